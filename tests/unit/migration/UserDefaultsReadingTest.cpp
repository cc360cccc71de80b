#include <limits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "migration/UserDefaultsReading.h"
#include "support/FakeUserDefaults.h"

namespace {

using Platform::NumberType;
using Platform::Value;

using Limits = std::numeric_limits<std::int64_t>;

Value DateOf(double seconds) {
  return Value::FromObject(std::make_shared<Platform::Date>(seconds));
}

// What a reader makes of a value that lies under its key.
template <class Reader>
auto Read(Reader reader, const Value& value) {
  TestSupport::FakeUserDefaults defaults;
  defaults.SetObject("k", value);
  return reader(defaults, "k");
}

TEST(UserDefaultsReading, ReadsStringsAndNumbersAsText) {
  const std::vector<std::pair<Value, std::string>> cases = {
      {"text", "text"},
      {"", ""},
      {42, "42"},
      {Limits::min(), "-9223372036854775808"},
      {Value::Number(NumberType::Char, 65), "65"},
      {0.1, "0.1"},
      {0.1F, "0.1"},
      {3.0, "3"},
      {1e20, "1e+20"},
      {-0.5, "-0.5"},
      {true, "1"},
      {false, "0"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(Read(Velmora::StringForKey, value), text) << value.Description();
  }
}

TEST(UserDefaultsReading, ReadsNothingElseAsText) {
  for (const Value& value :
       {Value(), Value::Array({"a"}), Value{{"k", "v"}}, Value::FromData({65}), DateOf(1)}) {
    EXPECT_EQ(Read(Velmora::StringForKey, value), std::nullopt) << value.Description();
  }
}

TEST(UserDefaultsReading, ReadsBooleansNumbersAndTextsAsBoolean) {
  for (const Value& value :
       {Value(true), Value(1), Value(-1), Value(0.5), Value("YES"), Value("yes"), Value("Y"),
        Value("true"), Value("True"), Value("1"), Value("007"), Value(" \t+1"), Value("-9")}) {
    EXPECT_TRUE(Read(Velmora::BoolForKey, value)) << value.Description();
  }
  for (const Value& value :
       {Value(), Value(false), Value(0), Value(0.0), Value("NO"), Value("no"), Value("false"),
        Value("0"), Value("000"), Value(""), Value("   "), Value("on"), Value("+-1"),
        Value::Array({true}), Value::FromData({1}), DateOf(1)}) {
    EXPECT_FALSE(Read(Velmora::BoolForKey, value)) << value.Description();
  }
}

TEST(UserDefaultsReading, ReadsNumbersBooleansAndTextsAsInteger) {
  const std::vector<std::pair<Value, std::int64_t>> cases = {
      {5, 5},
      {Limits::min(), Limits::min()},
      {2.9, 2},
      {-2.9, -2},
      {1e30, Limits::max()},
      {true, 1},
      {false, 0},
      {"12", 12},
      {" \n-12abc", -12},
      {"+3", 3},
      {"3.9", 3},
      {"", 0},
      {"abc", 0},
      {"+-3", 0},
      {"99999999999999999999", Limits::max()},
      {"-99999999999999999999", Limits::min()},
      {Value(), 0},
      {Value::Array({5}), 0},
      {DateOf(5), 0},
  };
  for (const auto& [value, number] : cases) {
    EXPECT_EQ(Read(Velmora::IntegerForKey, value), number) << value.Description();
  }
}

TEST(UserDefaultsReading, ReadsTheSecondsOfADateCutTowardsZero) {
  const std::vector<std::pair<Value, std::int64_t>> cases = {
      {DateOf(1500000000.999), 1500000000},
      {DateOf(-1.5), -1},
      {DateOf(0), 0},
      {DateOf(1e300), Limits::max()},
      {DateOf(std::numeric_limits<double>::quiet_NaN()), 0},
      {Value(), 0},
      {1500000000, 0},
      {"2017-07-14", 0},
  };
  for (const auto& [value, seconds] : cases) {
    EXPECT_EQ(Read(Velmora::DateSecondsForKey, value), seconds) << value.Description();
  }
}

}  // namespace
