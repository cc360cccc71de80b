#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "interop/CleanCollections.h"
#include "interop/StringCollections.h"

namespace Velmora {
namespace {

using Platform::Value;

TEST(CleanDictionary, KeepsStringsUnderStringKeys) {
  const Value dictionary = {{"a", "1"}, {"b", ""}};
  Value invalid;
  EXPECT_EQ(CleanDictionary(dictionary, &invalid), dictionary);
  EXPECT_EQ(invalid, Value::Dictionary());
}

TEST(CleanDictionary, MovesEveryOtherEntryToTheInvalidOnes) {
  const Value invalidOnes = {{"number", 1},
                             {"flag", true},
                             {"null", Value::Null()},
                             {"list", Value::Array({"x"})},
                             {"map", {{"x", "y"}}},
                             {"data", Value::FromData({1})},
                             {"date", Value::FromObject(std::make_shared<Platform::Date>(0))},
                             {7, "string under a number"},
                             {Value::Null(), "string under a null marker"}};
  Value dictionary = {{"first", "1"}};
  for (const auto& [key, value] : invalidOnes.Entries()) dictionary.Set(key, value);
  dictionary.Set("last", "2");

  Value invalid;
  EXPECT_EQ(CleanDictionary(dictionary, &invalid), Value({{"first", "1"}, {"last", "2"}}));
  EXPECT_EQ(invalid, invalidOnes);
  EXPECT_EQ(dictionary.Count(), invalidOnes.Count() + 2) << "the argument itself is left alone";
}

TEST(CleanDictionary, MovesAnEmptyKeyToTheInvalidEntries) {
  const Value dictionary = {{"", "x"}};
  Value invalid;
  EXPECT_EQ(CleanDictionary(dictionary, &invalid), Value::Dictionary());
  EXPECT_EQ(invalid, dictionary);
  EXPECT_EQ(ToStringMap(dictionary), (StringMap{{"", "x"}})) << "which ToStringMap keeps";
}

TEST(CleanDictionary, TakesAnythingButADictionaryForAnEmptyOne) {
  for (const Value& value : {Value(), Value("text"), Value::Array({"x"}), Value(1)}) {
    Value invalid = "what was there before";
    EXPECT_EQ(CleanDictionary(value, &invalid), Value::Dictionary());
    EXPECT_EQ(invalid, Value::Dictionary());
  }
}

TEST(CleanDictionary, NeedsNoPlaceForTheInvalidEntries) {
  EXPECT_EQ(CleanDictionary({{"a", "1"}, {"b", 2}}), Value({{"a", "1"}}));
}

TEST(CleanDictionary, MayStoreTheInvalidEntriesOverItsArgument) {
  Value dictionary = {{"a", "1"}, {"b", 2}};
  EXPECT_EQ(CleanDictionary(dictionary, &dictionary), Value({{"a", "1"}}));
  EXPECT_EQ(dictionary, Value({{"b", 2}}));
}

TEST(CleanDictionary, SeparatesManyEntries) {
  Value dictionary = Value::Dictionary();
  for (int i = 0; i < 100'000; ++i) {
    dictionary.Set("key " + std::to_string(i), i % 2 == 0 ? Value("text") : Value(i));
  }
  Value invalid;
  EXPECT_EQ(CleanDictionary(dictionary, &invalid).Count(), 50'000U);
  EXPECT_EQ(invalid.Count(), 50'000U);
}

TEST(CleanArray, SeparatesStringsFromTheRest) {
  const Value date = Value::FromObject(std::make_shared<Platform::Date>(0));
  const Value array = Value::Array({"a", 1, "", Value::Null(), "b", true, date});
  Value invalid;
  EXPECT_EQ(CleanArray(array, &invalid), Value::Array({"a", "", "b"}));
  EXPECT_EQ(invalid, Value::Array({1, Value::Null(), true, date}));
}

TEST(CleanArray, StoresAnEmptyArrayWhereNothingIsInvalid) {
  Value invalid;
  EXPECT_EQ(CleanArray(Value::Array({"a"}), &invalid), Value::Array({"a"}));
  EXPECT_EQ(invalid, Value::Array());
}

TEST(CleanArray, TakesAnythingButAnArrayForAnEmptyOne) {
  for (const Value& value : {Value(), Value("text"), Value({{"a", "b"}})}) {
    Value invalid;
    EXPECT_EQ(CleanArray(value, &invalid), Value::Array());
    EXPECT_EQ(invalid, Value::Array());
  }
}

TEST(CleanArray, NeedsNoPlaceForTheInvalidElements) {
  EXPECT_EQ(CleanArray(Value::Array({"a", 1})), Value::Array({"a"}));
}

}  // namespace
}  // namespace Velmora
