#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "interop/VariantConversion.h"

namespace Velmora {
namespace {

using Platform::NumberType;
using Platform::Value;
using std::string_literals::operator""s;

TEST(VariantToPlatform, OfNothingIsAbsent) {
  EXPECT_TRUE(VariantToPlatform(nullptr).IsAbsent());
  EXPECT_TRUE(VariantToPlatform(Variant::FromNull()).IsAbsent());
}

TEST(VariantToPlatform, KeepsStringsButEmptyOnes) {
  EXPECT_EQ(VariantToPlatform(Variant::FromString("text")), Value("text"));
  EXPECT_EQ(VariantToPlatform(Variant::FromString("a\0b"s)), Value("a"));
  EXPECT_TRUE(VariantToPlatform(Variant::FromString("")).IsAbsent());
  EXPECT_TRUE(VariantToPlatform(Variant::FromString("a\xFF")).IsAbsent());
}

TEST(VariantToPlatform, GivesNumbersOfTheFittingStorage) {
  const Value integer = VariantToPlatform(Variant::FromInteger(-7));
  EXPECT_EQ(integer.StorageType(), NumberType::SInt32);
  EXPECT_EQ(integer.AsInt32(), -7);

  const auto lowest = std::numeric_limits<std::int64_t>::min();
  const Value wide = VariantToPlatform(Variant::FromLong(lowest));
  EXPECT_EQ(wide.StorageType(), NumberType::SInt64);
  EXPECT_EQ(wide.AsInt64(), lowest);

  const Value real = VariantToPlatform(Variant::FromDouble(0.1));
  EXPECT_EQ(real.StorageType(), NumberType::Float64);
  EXPECT_EQ(real.AsDouble(), 0.1);
}

TEST(VariantToPlatform, GivesBooleansForBooleans) {
  EXPECT_TRUE(VariantToPlatform(Variant::FromBoolean(true)).IsBoolean());
  EXPECT_EQ(VariantToPlatform(Variant::FromBoolean(true)), Value(true));
  EXPECT_EQ(VariantToPlatform(Variant::FromBoolean(false)), Value(false));
}

TEST(VariantToPlatform, KeepsVectorsAndMaps) {
  EXPECT_EQ(VariantToPlatform(Variant::FromVariantVector({})), Value::Array());
  EXPECT_EQ(VariantToPlatform(Variant::FromVariantMap({})), Value::Dictionary());
  EXPECT_EQ(VariantToPlatform(Variant::FromVariantMap(
                {{"list", Variant::FromVariantVector(
                              {Variant::FromInteger(1),
                               Variant::FromVariantMap({{"x", Variant::FromString("y")}}),
                               Variant::FromVariantVector({}), Variant::FromBoolean(true)})},
                 {"after", Variant::FromLong(2)}})),
            Value({{"list", Value::Array({1, {{"x", "y"}}, Value::Array(), true})}, {"after", 2}}));
}

TEST(ToNSDictionary, KeepsTheOrderOfTheMap) {
  const Value dictionary = ToNSDictionary(VariantMap{{"b", Variant::FromInteger(2)},
                                                     {"c", Variant::FromVariantMap({})},
                                                     {"a", Variant::FromInteger(1)}});
  std::string keys;
  for (const auto& [key, value] : dictionary.Entries()) keys += key.AsString();
  EXPECT_EQ(keys, "abc");
}

TEST(ToNSDictionary, LeavesOutValuesThatBecomeAbsent) {
  EXPECT_EQ(ToNSDictionary(VariantMap{{"empty pointer", nullptr},
                                      {"null", Variant::FromNull()},
                                      {"empty text", Variant::FromString("")},
                                      {"bad text", Variant::FromString("\xFF")},
                                      {"good", Variant::FromString("x")}}),
            Value({{"good", "x"}}));
}

TEST(ToNSDictionary, LeavesOutKeysThatBecomeAbsent) {
  EXPECT_EQ(ToNSDictionary(VariantMap{{"", Variant::FromInteger(1)},
                                      {"\xFF", Variant::FromInteger(2)},
                                      {"\0x"s, Variant::FromVariantMap({})},
                                      {"good", Variant::FromInteger(4)}}),
            Value({{"good", 4}}));
}

TEST(ToNSDictionary, LetsALaterKeyThatIsCutToAnEarlierOneTakeItsPlace) {
  EXPECT_EQ(ToNSDictionary(
                VariantMap{{"a", Variant::FromInteger(1)}, {"a\0b"s, Variant::FromInteger(2)}}),
            Value({{"a", 2}}));
}

TEST(ToNSArray, RefusesElementsThatBecomeAbsent) {
  EXPECT_THROW(ToNSArray(VariantVector{Variant::FromInteger(1), nullptr}), std::invalid_argument);
  EXPECT_THROW(ToNSArray(VariantVector{Variant::FromNull()}), std::invalid_argument);
  EXPECT_THROW(ToNSArray(VariantVector{Variant::FromString("")}), std::invalid_argument);
}

TEST(ToNSArray, RefusesThemAtWhateverDepth) {
  const auto inner = Variant::FromVariantVector({Variant::FromNull()});
  EXPECT_THROW(VariantToPlatform(Variant::FromVariantMap({{"list", inner}})),
               std::invalid_argument);
  EXPECT_THROW(ToNSDictionary(VariantMap{{"list", inner}}), std::invalid_argument);
}

TEST(ToNSArray, KeepsTheElements) {
  EXPECT_EQ(ToNSArray(VariantVector{}), Value::Array());
  EXPECT_EQ(ToNSArray(VariantVector{Variant::FromInteger(1), Variant::FromVariantMap({})}),
            Value::Array({1, Value::Dictionary()}));
}

TEST(VariantToPlatform, IsNotTheInverseOfPlatformToVariant) {
  EXPECT_TRUE(VariantToPlatform(PlatformToVariant(Value::Null())).IsAbsent());
  EXPECT_TRUE(VariantToPlatform(PlatformToVariant("")).IsAbsent());
  EXPECT_EQ(VariantToPlatform(PlatformToVariant(Value::Number(NumberType::SInt8, 5))).StorageType(),
            NumberType::SInt32);
}

TEST(VariantToPlatform, BringsBackWhatCanComeBack) {
  const Value value = {
      {"text", "x"},   {"flag", true},
      {"number", 1},   {"wide", 1LL << 40},
      {"ratio", 0.25}, {"list", Value::Array({1, "x", {{"deep", Value::Array({false})}}})}};
  EXPECT_EQ(VariantToPlatform(PlatformToVariant(value)), value);
}

TEST(VariantToPlatform, TakesNestingAsDeepAsMemoryAllows) {
  for (const int depth : {1'000, 100'000}) {
    auto variant = Variant::FromString("innermost");
    Value expected = "innermost";
    for (int i = 0; i < depth; ++i) {
      if (i % 2 == 0) {
        variant = Variant::FromVariantVector({std::move(variant)});
        Value array = Value::Array();
        array.Append(std::move(expected));
        expected = std::move(array);
      } else {
        variant = Variant::FromVariantMap({{"inside", std::move(variant)}});
        Value dictionary = Value::Dictionary();
        dictionary.Set("inside", std::move(expected));
        expected = std::move(dictionary);
      }
    }
    EXPECT_EQ(VariantToPlatform(variant), expected) << depth;
  }
}

TEST(VariantToPlatform, ReleasesADeepConversionThatFailsAtItsBottom) {
  auto variant = Variant::FromNull();
  for (int i = 0; i < 100'000; ++i) variant = Variant::FromVariantVector({std::move(variant)});
  EXPECT_THROW(VariantToPlatform(variant), std::invalid_argument);
}

TEST(VariantToPlatform, TakesWideCollections) {
  VariantMap map;
  for (int i = 0; i < 20'000; ++i) {
    map["key " + std::to_string(i)] = Variant::FromVariantVector({Variant::FromInteger(i)});
  }
  const Value dictionary = ToNSDictionary(map);
  ASSERT_EQ(dictionary.Count(), 20'000U);
  for (int i = 0; i < 20'000; ++i) {
    ASSERT_EQ(dictionary.Get("key " + std::to_string(i)).At(0).AsInt32(), i);
  }
}

}  // namespace
}  // namespace Velmora
