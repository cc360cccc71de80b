#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "interop/StringCollections.h"

namespace Velmora {
namespace {

using Platform::Value;
using std::string_literals::operator""s;
using testing::ElementsAre;

TEST(ToNSDictionaryOfStrings, KeepsTheOrderOfTheMap) {
  const Value dictionary = ToNSDictionary(StringMap{{"b", "2"}, {"c", "3"}, {"a", "1"}});
  std::string keys;
  for (const auto& [key, value] : dictionary.Entries()) keys += key.AsString();
  EXPECT_EQ(keys, "abc");
  EXPECT_EQ(dictionary, Value({{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST(ToNSDictionaryOfStrings, LeavesOutWhatThePlatformHasNoStringFor) {
  EXPECT_EQ(ToNSDictionary(StringMap{{"", "empty key"},
                                     {"empty value", ""},
                                     {"\xFF", "bad key"},
                                     {"bad value", "\xFF"},
                                     {"good", "x"}}),
            Value({{"good", "x"}}));
}

TEST(ToNSDictionaryOfStrings, OfNothingIsAnEmptyDictionary) {
  EXPECT_EQ(ToNSDictionary(StringMap{}), Value::Dictionary());
}

TEST(ToNSArrayOfStrings, KeepsTheElements) {
  EXPECT_EQ(ToNSArray(std::vector<std::string>{"b", "a", "b"}), Value::Array({"b", "a", "b"}));
  EXPECT_EQ(ToNSArray(std::vector<std::string>{}), Value::Array());
}

TEST(ToNSArrayOfStrings, RefusesElementsThatThePlatformHasNoStringFor) {
  EXPECT_THROW(ToNSArray(std::vector<std::string>{"a", ""}), std::invalid_argument);
  EXPECT_THROW(ToNSArray(std::vector<std::string>{"\xFF"}), std::invalid_argument);
}

TEST(ToStringMap, KeepsPairsOfStrings) {
  EXPECT_EQ(ToStringMap({{"b", "2"}, {"a", ""}}), (StringMap{{"a", ""}, {"b", "2"}}));
}

TEST(ToStringMap, KeepsAnEmptyKey) { EXPECT_EQ(ToStringMap({{"", "x"}}), (StringMap{{"", "x"}})); }

TEST(ToStringMap, SkipsEveryOtherEntry) {
  EXPECT_EQ(ToStringMap({{"number", 1},
                         {"flag", true},
                         {"null", Value::Null()},
                         {"list", Value::Array({"x"})},
                         {"date", Value::FromObject(std::make_shared<Platform::Date>(0))},
                         {1, "under a number"},
                         {"good", "x"}}),
            (StringMap{{"good", "x"}}));
}

TEST(ToStringMap, KeepsTheLaterOfTwoKeysThatBecomeOne) {
  EXPECT_EQ(ToStringMap({{"a\0first"s, "1"}, {"a\0second"s, "2"}}), (StringMap{{"a", "2"}}));
}

TEST(ToStringMap, OfAnythingButADictionaryIsEmpty) {
  EXPECT_TRUE(ToStringMap({}).empty());
  EXPECT_TRUE(ToStringMap("text").empty());
  EXPECT_TRUE(ToStringMap(Value::Array({"x"})).empty());
}

TEST(ToStringVector, ConvertsEveryElement) {
  EXPECT_THAT(ToStringVector(Value::Array({"a", 1, "", Value::Null(), "b\0c"s})),
              ElementsAre("a", "", "", "", "b"));
}

TEST(ToStringVector, OfAnythingButAnArrayIsEmpty) {
  EXPECT_TRUE(ToStringVector({}).empty());
  EXPECT_TRUE(ToStringVector("text").empty());
  EXPECT_TRUE(ToStringVector({{"a", "b"}}).empty());
}

TEST(StringCollections, ComeBackAsTheyWent) {
  StringMap map;
  std::vector<std::string> vector;
  for (int i = 0; i < 20'000; ++i) {
    map["key " + std::to_string(i)] = "value " + std::to_string(i);
    vector.push_back("value " + std::to_string(i));
  }
  EXPECT_EQ(ToStringMap(ToNSDictionary(map)), map);
  EXPECT_EQ(ToStringVector(ToNSArray(vector)), vector);
}

}  // namespace
}  // namespace Velmora
