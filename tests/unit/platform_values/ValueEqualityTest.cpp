#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

TEST(ValueEquality, ComparesContentsOfOneKind) {
  EXPECT_EQ(Value(), Value());
  EXPECT_EQ(Value::Null(), Value::Null());
  EXPECT_EQ(Value("text"), Value(std::string("text")));
  EXPECT_EQ(Value(std::string(100, 'x')), Value(std::string(100, 'x')));
  EXPECT_EQ(Value::FromData({1, 2}), Value::FromData({1, 2}));
  EXPECT_EQ(Value::FromObject(std::make_shared<Date>(1)),
            Value::FromObject(std::make_shared<Date>(1)));
  EXPECT_NE(Value("a"), Value("b"));
  EXPECT_NE(Value(true), Value(false));
  EXPECT_NE(Value::FromData({1, 2}), Value::FromData({1, 3}));
  EXPECT_NE(Value::FromObject(std::make_shared<Date>(1)),
            Value::FromObject(std::make_shared<Date>(2)));
}

TEST(ValueEquality, TellsKindsApart) {
  const Value values =
      Value::Array({"1", 1, true, Value::Array(), Value::Dictionary(), Value::Null(),
                    Value::FromData({}), Value::FromObject(std::make_shared<Date>(1))});
  for (std::size_t i = 0; i < values.Count(); ++i) {
    for (std::size_t j = 0; j < values.Count(); ++j) {
      EXPECT_EQ(values.At(i) == values.At(j), i == j) << i << ", " << j;
    }
    EXPECT_NE(values.At(i), Value());
  }
}

TEST(ValueEquality, ComparesNumbersByValueWhateverTheirStorage) {
  EXPECT_EQ(Value(1), Value(1LL));
  EXPECT_EQ(Value(1), Value(1.0));
  EXPECT_EQ(Value(1.0F), Value::Number(NumberType::Char, 1));
  EXPECT_EQ(Value(0), Value(-0.0));
  EXPECT_NE(Value(1), Value(1.5));
  EXPECT_NE(Value(1), Value(2));
}

TEST(ValueEquality, ComparesNumbersExactly) {
  const auto largest = std::numeric_limits<std::int64_t>::max();
  EXPECT_NE(Value(largest), Value(9223372036854775808.0));
  EXPECT_EQ(Value(std::numeric_limits<std::int64_t>::min()), Value(-9223372036854775808.0));
  EXPECT_NE(Value((1LL << 53) + 1), Value(9007199254740992.0));
  EXPECT_NE(Value(0.1F), Value(0.1));
  EXPECT_NE(Value(1), Value(std::numeric_limits<double>::infinity()));
}

TEST(ValueEquality, TakesNotANumberForEqualToItself) {
  const double quiet = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Value(quiet), Value(-quiet));
  EXPECT_NE(Value(quiet), Value(0));
  Value dictionary = Value::Dictionary();
  dictionary.Set(quiet, 1);
  EXPECT_EQ(dictionary.Get(quiet).AsInt32(), 1);
}

TEST(ValueEquality, ComparesArraysElementByElement) {
  EXPECT_EQ(Value::Array({1, "x", Value::Array({2})}),
            Value::Array({1.0, "x", Value::Array({2LL})}));
  EXPECT_NE(Value::Array({1, 2}), Value::Array({2, 1}));
  EXPECT_NE(Value::Array({1}), Value::Array({1, 2}));
  EXPECT_NE(Value::Array({Value::Array({1}), 3}), Value::Array({Value::Array({2}), 3}));
  EXPECT_EQ(Value::Array(), Value::FromVector({}));
}

TEST(ValueEquality, IgnoresTheOrderOfEntries) {
  EXPECT_EQ(Value({{"a", 1}, {"b", 2}}), Value({{"b", 2}, {"a", 1}}));
  EXPECT_NE(Value({{"a", 1}, {"b", 2}}), Value({{"a", 1}, {"b", 3}}));
  EXPECT_NE(Value({{"a", 1}, {"b", 2}}), Value({{"a", 1}, {"c", 2}}));
  EXPECT_NE(Value({{"a", 1}}), Value({{"a", 1}, {"b", 2}}));
  EXPECT_EQ(Value::Dictionary(), Value::Dictionary(100));
}

TEST(ValueEquality, IgnoresEntriesThatWereRemoved) {
  Value left = Value::Dictionary();
  for (int i = 0; i < 30; ++i) left.Set(i, "value");
  for (int i = 0; i < 15; ++i) left.Remove(i);
  Value right = Value::Dictionary();
  for (int i = 29; i >= 15; --i) right.Set(i, "value");
  EXPECT_EQ(left, right);
  EXPECT_EQ(right, left);
}

TEST(ValueEquality, FindsThePartnerOfAKeyThatIsAContainer) {
  const auto dictionary = [](const char* first, const char* second) {
    Value result = Value::Dictionary();
    result.Set(Value::Array({"k", first}), first);
    result.Set(Value::Array({"k", second}), second);
    result.Set({{"k", first}}, "dictionary");
    result.Set("plain", 1);
    return result;
  };
  EXPECT_EQ(dictionary("1", "2"), dictionary("1", "2"));
  Value swapped = Value::Dictionary();
  swapped.Set("plain", 1);
  swapped.Set({{"k", "1"}}, "dictionary");
  swapped.Set(Value::Array({"k", "2"}), "2");
  swapped.Set(Value::Array({"k", "1"}), "1");
  EXPECT_EQ(dictionary("1", "2"), swapped);
  EXPECT_NE(dictionary("1", "2"), dictionary("1", "3"));
  swapped.Set(Value::Array({"k", "2"}), "other");
  EXPECT_NE(dictionary("1", "2"), swapped);
}

TEST(ValueEquality, ComparesDeepDifferences) {
  const auto nested = [](int innermost) {
    Value value = innermost;
    for (int i = 0; i < 50; ++i) {
      value = i % 2 == 0 ? Value::Array({i, value, "after"})
                         : Value({{"before", i}, {"inside", value}, {"after", "x"}});
    }
    return value;
  };
  EXPECT_EQ(nested(1), nested(1));
  EXPECT_NE(nested(1), nested(2));
}

}  // namespace
}  // namespace Platform
