#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

using testing::ElementsAre;

// An object that says nothing about its hash.
class Token final : public Object {
 public:
  explicit Token(int number) : number_(number) {}
  std::string Description() const override { return "token"; }
  bool Equals(const Object& other) const override {
    const auto* token = dynamic_cast<const Token*>(&other);
    return token != nullptr && token->number_ == number_;
  }

 private:
  int number_;
};

std::vector<std::string> KeyTexts(const Value& dictionary) {
  std::vector<std::string> texts;
  for (const auto& [key, value] : dictionary.Entries()) texts.push_back(key.AsString());
  return texts;
}

TEST(ValueDictionary, FindsWhatWasSet) {
  Value dictionary = Value::Dictionary();
  dictionary.Set("a", 1);
  dictionary.Set(std::string("b"), 2);
  EXPECT_EQ(dictionary.Get("a").AsInt32(), 1);
  EXPECT_EQ(dictionary.Get(std::string("b")).AsInt32(), 2);
  EXPECT_EQ(dictionary.Get(std::string_view("b")).AsInt32(), 2);
  EXPECT_EQ(dictionary.Get(Value("b")).AsInt32(), 2);
  EXPECT_TRUE(dictionary.Get("c").IsAbsent());
  EXPECT_TRUE(dictionary.Get(Value()).IsAbsent());
  EXPECT_TRUE(dictionary.Get(static_cast<const char*>(nullptr)).IsAbsent());
}

TEST(ValueDictionary, KeepsTheOrderInWhichKeysCame) {
  Value dictionary = {{"z", 1}, {"a", 2}, {"m", 3}};
  dictionary.Set("a", 4);
  dictionary.Set("b", 5);
  EXPECT_THAT(KeyTexts(dictionary), ElementsAre("z", "a", "m", "b"));
  EXPECT_EQ(dictionary.Get("a").AsInt32(), 4);
  dictionary.Remove("z");
  dictionary.Set("z", 6);
  EXPECT_THAT(KeyTexts(dictionary), ElementsAre("a", "m", "b", "z"));
  EXPECT_EQ(dictionary.Count(), 4U);
}

TEST(ValueDictionary, LeavesOutWhatIsSetToAbsent) {
  Value dictionary = {{"a", 1}, {"b", 2}};
  dictionary.Set("a", {});
  dictionary.Set("c", {});
  EXPECT_THAT(KeyTexts(dictionary), ElementsAre("b"));
}

TEST(ValueDictionary, RefusesAnAbsentKey) {
  Value dictionary = {{"a", 1}};
  EXPECT_THROW(dictionary.Set({}, 1), std::invalid_argument);
  EXPECT_THROW(dictionary.Set({}, {}), std::invalid_argument);
  EXPECT_EQ(dictionary.Count(), 1U);
  dictionary.Remove({});
  EXPECT_EQ(dictionary.Count(), 1U);
}

TEST(ValueDictionary, IsWhatSetAndRemoveAskFor) {
  Value absent;
  EXPECT_THROW(absent.Set("a", 1), std::logic_error);
  Value array = Value::Array({1});
  EXPECT_THROW(array.Set("a", 1), std::logic_error);
  EXPECT_THROW(array.Remove("a"), std::logic_error);
  EXPECT_EQ(array.Count(), 1U);
}

TEST(ValueDictionary, TakesAnyValueAsKey) {
  const Value keys = Value::Array({"", 1, 1.5, true, Value::Null(), Value::FromData({1, 2}),
                                   Value::Array({1, "x"}), Value({{"k", "v"}}),
                                   Value::FromObject(std::make_shared<Date>(7))});
  Value dictionary = Value::Dictionary();
  int number = 0;
  for (const Value& key : keys.Items()) dictionary.Set(key, ++number);
  ASSERT_EQ(dictionary.Count(), keys.Count());
  number = 0;
  for (const Value& key : keys.Items()) EXPECT_EQ(dictionary.Get(key).AsInt32(), ++number);
  EXPECT_EQ(dictionary.Get(Value::FromObject(std::make_shared<Date>(7))).AsInt32(), 9);
  EXPECT_EQ(dictionary.Get({{"k", "v"}}).AsInt32(), 8);
}

TEST(ValueDictionary, TakesEqualNumbersOfDifferentStorageForOneKey) {
  for (const int others : {0, 20}) {
    Value dictionary = Value::Dictionary();
    for (int i = 0; i < others; ++i) dictionary.Set("other " + std::to_string(i), i);
    dictionary.Set(2, "integer");
    dictionary.Set(2.0, "double");
    dictionary.Set(Value::Number(NumberType::SInt8, 2), "byte");
    dictionary.Set(0.0, "zero");
    dictionary.Set(-0.0, "minus zero");
    EXPECT_EQ(dictionary.Count(), static_cast<std::size_t>(others) + 2);
    EXPECT_EQ(dictionary.Get(2LL).AsString(), "byte");
    EXPECT_EQ(dictionary.Get(0).AsString(), "minus zero");
    EXPECT_TRUE(dictionary.Get(true).IsAbsent());
    EXPECT_TRUE(dictionary.Get("2").IsAbsent());
  }
}

TEST(ValueDictionary, TellsObjectsApartThatDoNotHash) {
  Value dictionary = Value::Dictionary();
  for (int i = 0; i < 20; ++i) dictionary.Set(Value::FromObject(std::make_shared<Token>(i)), i);
  dictionary.Set(Value::FromObject(std::make_shared<Date>(0)), "date");
  EXPECT_EQ(dictionary.Count(), 21U);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(dictionary.Get(Value::FromObject(std::make_shared<Token>(i))).AsInt32(), i);
  }
  EXPECT_EQ(dictionary.Get(Value::FromObject(std::make_shared<Date>(0))).AsString(), "date");
}

TEST(ValueDictionary, TellsKeysWithZeroBytesApart) {
  Value dictionary = Value::Dictionary();
  dictionary.Set(std::string("a\0b", 3), 1);
  dictionary.Set("a", 2);
  EXPECT_EQ(dictionary.Count(), 2U);
  EXPECT_EQ(dictionary.Get(std::string("a\0b", 3)).AsInt32(), 1);
}

TEST(ValueDictionary, ListsItsKeys) {
  const Value dictionary = {{"b", 1}, {2, "two"}};
  const std::vector<Value> keys = dictionary.Keys();
  ASSERT_EQ(keys.size(), 2U);
  EXPECT_EQ(keys[0].AsString(), "b");
  EXPECT_EQ(keys[1].AsInt32(), 2);
}

TEST(ValueDictionary, StaysTrueThroughManyChanges) {
  constexpr int kKeys = 100'000;
  Value dictionary = Value::Dictionary();
  for (int i = 0; i < kKeys; ++i) dictionary.Set("key number " + std::to_string(i), i);
  ASSERT_EQ(dictionary.Count(), static_cast<std::size_t>(kKeys));
  for (int i = 0; i < kKeys; ++i) {
    ASSERT_EQ(dictionary.Get("key number " + std::to_string(i)).AsInt32(), i);
  }
  for (int i = 0; i < kKeys; ++i) {
    if (i % 10 != 0) dictionary.Remove("key number " + std::to_string(i));
  }
  ASSERT_EQ(dictionary.Count(), static_cast<std::size_t>(kKeys) / 10);
  int expected = 0;
  for (const auto& [key, value] : dictionary.Entries()) {
    ASSERT_EQ(value.AsInt32(), expected);
    expected += 10;
  }
  EXPECT_EQ(expected, kKeys);
  EXPECT_TRUE(dictionary.Get("key number 1").IsAbsent());
  dictionary.Set("key number 1", "again");
  EXPECT_EQ(dictionary.Get("key number 1").AsString(), "again");
}

TEST(ValueDictionary, HoldsManyNumbersAsKeys) {
  constexpr int kKeys = 100'000;
  Value dictionary = Value::Dictionary(kKeys);
  for (int i = 0; i < kKeys; ++i) dictionary.Set(i * 0.5, i);
  ASSERT_EQ(dictionary.Count(), static_cast<std::size_t>(kKeys));
  for (int i = 0; i < kKeys; i += 2) ASSERT_EQ(dictionary.Get(i / 2).AsInt32(), i);
}

TEST(ValueDictionary, MayBeFilledAndEmptiedAgainAndAgain) {
  Value dictionary = Value::Dictionary();
  for (int round = 0; round < 2000; ++round) {
    for (int i = 0; i < 20; ++i) dictionary.Set(i, round);
    for (int i = 0; i < 20; ++i) dictionary.Remove(i);
    ASSERT_EQ(dictionary.Count(), 0U);
    ASSERT_TRUE(dictionary.Keys().empty());
  }
  dictionary.Set("last", 1);
  EXPECT_EQ(dictionary.Get("last").AsInt32(), 1);
}

TEST(ValueDictionary, MayHoldACopyOfItself) {
  Value dictionary = {{"a", 1}};
  dictionary.Set("self", dictionary);
  dictionary.Set(dictionary, "self as key");
  EXPECT_EQ(dictionary.Count(), 3U);
  EXPECT_EQ(dictionary.Get("self").Count(), 1U);
}

TEST(ValueDictionary, MayLoseAKeyThatIsNamedByItsOwnEntry) {
  Value dictionary = {{"a key that is too long to lie in place", 1}, {"b", 2}};
  dictionary.Remove(dictionary.Entries().begin()->key);
  EXPECT_THAT(KeyTexts(dictionary), ElementsAre("b"));
}

TEST(ValueDictionary, WalksNothingWhereThereIsNothing) {
  EXPECT_TRUE(KeyTexts(Value()).empty());
  EXPECT_TRUE(KeyTexts(Value::Dictionary()).empty());
  EXPECT_TRUE(KeyTexts(Value::Array({1})).empty());
}

}  // namespace
}  // namespace Platform
