#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "interop/VariantConversion.h"

namespace Velmora {
namespace {

using Platform::NumberType;
using Platform::Value;
using std::string_literals::operator""s;

constexpr auto kLowest32 = std::numeric_limits<std::int32_t>::min();
constexpr auto kLargest32 = std::numeric_limits<std::int32_t>::max();
constexpr auto kLowest64 = std::numeric_limits<std::int64_t>::min();
constexpr auto kLargest64 = std::numeric_limits<std::int64_t>::max();

// What is compared: kinds and values, element by element.
testing::AssertionResult IsVariant(const Value& value, const std::shared_ptr<Variant>& expected) {
  return Variant::AreEqual(PlatformToVariant(value), expected)
             ? testing::AssertionSuccess()
             : testing::AssertionFailure() << value.Description();
}

Value ADate() { return Value::FromObject(std::make_shared<Platform::Date>(0)); }

TEST(PlatformToVariant, OfNothingIsAnEmptyPointer) { EXPECT_EQ(PlatformToVariant({}), nullptr); }

TEST(PlatformToVariant, KeepsStrings) {
  EXPECT_TRUE(IsVariant("text", Variant::FromString("text")));
  EXPECT_TRUE(IsVariant("", Variant::FromString("")));
  EXPECT_TRUE(IsVariant("a\0b"s, Variant::FromString("a\0b"s)));
  const std::string large(10'000'000, 'x');
  EXPECT_TRUE(IsVariant(large, Variant::FromString(large)));
}

TEST(PlatformToVariant, KeepsBooleansApartFromNumbers) {
  EXPECT_TRUE(IsVariant(true, Variant::FromBoolean(true)));
  EXPECT_TRUE(IsVariant(false, Variant::FromBoolean(false)));
  EXPECT_TRUE(IsVariant(1, Variant::FromInteger(1)));
}

TEST(PlatformToVariant, OfSmallStorageTypesIsAnInteger) {
  for (const NumberType type : {NumberType::SInt8, NumberType::SInt16, NumberType::SInt32,
                                NumberType::Short, NumberType::Int, NumberType::NSInteger}) {
    EXPECT_TRUE(IsVariant(Value::Number(type, -5), Variant::FromInteger(-5)));
  }
  EXPECT_TRUE(IsVariant(Value::Number(NumberType::SInt8, -128), Variant::FromInteger(-128)));
  EXPECT_TRUE(IsVariant(Value::Number(NumberType::SInt16, 32767), Variant::FromInteger(32767)));
  EXPECT_TRUE(IsVariant(kLowest32, Variant::FromInteger(kLowest32)));
  EXPECT_TRUE(IsVariant(kLargest32, Variant::FromInteger(kLargest32)));
}

TEST(PlatformToVariant, OfAnNSIntegerKeepsTheLow32Bits) {
  const auto nsInteger = [](std::int64_t number) {
    return Value::Number(NumberType::NSInteger, number);
  };
  EXPECT_TRUE(IsVariant(nsInteger(std::int64_t{1} << 40), Variant::FromInteger(0)));
  EXPECT_TRUE(IsVariant(nsInteger((std::int64_t{1} << 40) + 77), Variant::FromInteger(77)));
  EXPECT_TRUE(IsVariant(nsInteger(kLargest64), Variant::FromInteger(-1)));
  EXPECT_TRUE(IsVariant(nsInteger(kLowest64), Variant::FromInteger(0)));
}

TEST(PlatformToVariant, OfFloatingStorageTypesIsADouble) {
  for (const NumberType type : {NumberType::Float32, NumberType::Float64, NumberType::Float,
                                NumberType::Double, NumberType::CGFloat}) {
    EXPECT_TRUE(IsVariant(Value::Number(type, 0.5), Variant::FromDouble(0.5)));
    EXPECT_TRUE(IsVariant(Value::Number(type, 2), Variant::FromDouble(2)));
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(IsVariant(Value::Number(type, -infinity), Variant::FromDouble(-infinity)));
    EXPECT_TRUE(std::isnan(PlatformToVariant(Value::Number(type, std::nan("")))->GetDouble()));
  }
  const double largest = std::numeric_limits<double>::max();
  EXPECT_TRUE(IsVariant(largest, Variant::FromDouble(largest)));
  EXPECT_TRUE(IsVariant(0.1F, Variant::FromDouble(static_cast<double>(0.1F))));
}

TEST(PlatformToVariant, OfWideStorageTypesIsALong) {
  for (const NumberType type : {NumberType::SInt64, NumberType::Long, NumberType::LongLong}) {
    EXPECT_TRUE(IsVariant(Value::Number(type, 5), Variant::FromLong(5)));
    EXPECT_TRUE(IsVariant(Value::Number(type, kLowest64), Variant::FromLong(kLowest64)));
    EXPECT_TRUE(IsVariant(Value::Number(type, kLargest64), Variant::FromLong(kLargest64)));
  }
}

TEST(PlatformToVariant, OfOtherStorageTypesIsAnEmptyPointer) {
  EXPECT_EQ(PlatformToVariant(Value::Number(NumberType::Char, 'a')), nullptr);
  EXPECT_EQ(PlatformToVariant(Value::Number(NumberType::CFIndex, 5)), nullptr);
  for (const int type : {-1, 0, 17, 99, 1'000'000}) {
    EXPECT_EQ(PlatformToVariant(Value::Number(static_cast<NumberType>(type), 5)), nullptr) << type;
  }
}

TEST(PlatformToVariant, OfTheNullMarkerIsANullVariant) {
  EXPECT_TRUE(IsVariant(Value::Null(), Variant::FromNull()));
}

TEST(PlatformToVariant, OfDataAndOtherObjectsIsAnEmptyPointer) {
  EXPECT_EQ(PlatformToVariant(Value::FromData({1, 2})), nullptr);
  EXPECT_EQ(PlatformToVariant(ADate()), nullptr);
}

TEST(PlatformToVariant, KeepsArraysAndDictionaries) {
  EXPECT_TRUE(IsVariant(Value::Array(), Variant::FromVariantVector({})));
  EXPECT_TRUE(IsVariant(Value::Dictionary(), Variant::FromVariantMap({})));
  EXPECT_TRUE(IsVariant(
      {{"list", Value::Array({1, "x", Value::Array({true}), 2LL})},
       {"map", {{"inside", {{"deeper", 0.5}}}}},
       {"after", "containers"}},
      Variant::FromVariantMap(
          {{"list",
            Variant::FromVariantVector({Variant::FromInteger(1), Variant::FromString("x"),
                                        Variant::FromVariantVector({Variant::FromBoolean(true)}),
                                        Variant::FromLong(2)})},
           {"map",
            Variant::FromVariantMap(
                {{"inside", Variant::FromVariantMap({{"deeper", Variant::FromDouble(0.5)}})}})},
           {"after", Variant::FromString("containers")}})));
}

TEST(ToVariantMap, KeepsEntriesWithoutAVariantAsEmptyPointers) {
  const VariantMap map = ToVariantMap({{"date", ADate()},
                                       {"data", Value::FromData({1})},
                                       {"char", Value::Number(NumberType::Char, 1)},
                                       {"text", "x"}});
  ASSERT_EQ(map.size(), 4U);
  EXPECT_EQ(map.at("date"), nullptr);
  EXPECT_EQ(map.at("data"), nullptr);
  EXPECT_EQ(map.at("char"), nullptr);
  EXPECT_EQ(map.at("text")->GetString(), "x");
}

TEST(ToVariantMap, ConvertsKeysToText) {
  const VariantMap map = ToVariantMap({{"", "empty"}, {"a\0b"s, "cut"}});
  ASSERT_EQ(map.size(), 2U);
  EXPECT_EQ(map.at("")->GetString(), "empty");
  EXPECT_EQ(map.at("a")->GetString(), "cut");
}

TEST(ToVariantMap, KeepsTheLaterOfTwoKeysThatBecomeOne) {
  const VariantMap map = ToVariantMap({{1, Value::Array({"earlier"})},
                                       {"a\0first"s, {{"earlier", 1}}},
                                       {Value::Null(), "later"},
                                       {"a\0second"s, ADate()}});
  ASSERT_EQ(map.size(), 2U);
  EXPECT_EQ(map.at("")->GetString(), "later");
  EXPECT_EQ(map.at("a"), nullptr);
}

TEST(ToVariantMap, OfAnythingButADictionaryIsEmpty) {
  EXPECT_TRUE(ToVariantMap({}).empty());
  EXPECT_TRUE(ToVariantMap("text").empty());
  EXPECT_TRUE(ToVariantMap(Value::Array({"x"})).empty());
  EXPECT_TRUE(ToVariantMap(Value::Dictionary()).empty());
}

TEST(ToVariantVector, KeepsElementsWithoutAVariantAsEmptyPointers) {
  const VariantVector vector =
      ToVariantVector(Value::Array({1, ADate(), Value::Null(), Value::Array({ADate()})}));
  ASSERT_EQ(vector.size(), 4U);
  EXPECT_EQ(vector[0]->GetInteger(), 1);
  EXPECT_EQ(vector[1], nullptr);
  EXPECT_EQ(vector[2]->GetKind(), VariantKind::Null);
  EXPECT_EQ(vector[3]->GetVariantVector(), VariantVector{nullptr});
}

TEST(ToVariantVector, OfAnythingButAnArrayIsEmpty) {
  EXPECT_TRUE(ToVariantVector({}).empty());
  EXPECT_TRUE(ToVariantVector("text").empty());
  EXPECT_TRUE(ToVariantVector({{"a", "b"}}).empty());
  EXPECT_TRUE(ToVariantVector(Value::Array()).empty());
}

TEST(PlatformToVariant, TakesNestingAsDeepAsMemoryAllows) {
  for (const int depth : {1'000, 100'000}) {
    Value value = "innermost";
    auto expected = Variant::FromString("innermost");
    for (int i = 0; i < depth; ++i) {
      if (i % 2 == 0) {
        Value array = Value::Array();
        array.Append(std::move(value));
        value = std::move(array);
        expected = Variant::FromVariantVector({std::move(expected)});
      } else {
        Value dictionary = Value::Dictionary();
        dictionary.Set("inside", std::move(value));
        value = std::move(dictionary);
        expected = Variant::FromVariantMap({{"inside", std::move(expected)}});
      }
    }
    EXPECT_TRUE(Variant::AreEqual(PlatformToVariant(value), expected)) << depth;
  }
}

TEST(PlatformToVariant, TakesWideCollections) {
  Value dictionary = Value::Dictionary();
  for (int i = 0; i < 20'000; ++i) {
    dictionary.Set("key " + std::to_string(i), Value::Array({i, {{"inside", i}}}));
  }
  const VariantMap map = ToVariantMap(dictionary);
  ASSERT_EQ(map.size(), 20'000U);
  for (int i = 0; i < 20'000; ++i) {
    const VariantVector& vector = map.at("key " + std::to_string(i))->GetVariantVector();
    ASSERT_EQ(vector.at(0)->GetInteger(), i);
    ASSERT_EQ(vector.at(1)->GetVariantMap().at("inside")->GetInteger(), i);
  }
}

}  // namespace
}  // namespace Velmora
