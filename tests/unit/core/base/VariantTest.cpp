#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {
namespace {

constexpr std::int32_t kLowestInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighestInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kLowestLong = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighestLong = std::numeric_limits<std::int64_t>::max();

TEST(Variant, KnowsItsKind) {
  EXPECT_EQ(Variant::FromNull()->GetKind(), VariantKind::Null);
  EXPECT_EQ(Variant::FromString("")->GetKind(), VariantKind::String);
  EXPECT_EQ(Variant::FromInteger(1)->GetKind(), VariantKind::Integer);
  EXPECT_EQ(Variant::FromLong(1)->GetKind(), VariantKind::Long);
  EXPECT_EQ(Variant::FromDouble(1)->GetKind(), VariantKind::Double);
  EXPECT_EQ(Variant::FromBoolean(true)->GetKind(), VariantKind::Boolean);
  EXPECT_EQ(Variant::FromVariantVector({})->GetKind(), VariantKind::VariantVector);
  EXPECT_EQ(Variant::FromVariantMap({})->GetKind(), VariantKind::VariantMap);
}

TEST(Variant, CountsIntegersLongsAndDoublesAsNumeric) {
  EXPECT_TRUE(Variant::FromInteger(0)->IsNumericKind());
  EXPECT_TRUE(Variant::FromLong(0)->IsNumericKind());
  EXPECT_TRUE(Variant::FromDouble(0)->IsNumericKind());
  EXPECT_FALSE(Variant::FromNull()->IsNumericKind());
  EXPECT_FALSE(Variant::FromString("1")->IsNumericKind());
  EXPECT_FALSE(Variant::FromBoolean(true)->IsNumericKind());
  EXPECT_FALSE(Variant::FromVariantVector({})->IsNumericKind());
  EXPECT_FALSE(Variant::FromVariantMap({})->IsNumericKind());
}

TEST(Variant, KeepsTextsWithZeroBytesAndOfAnySize) {
  const std::string withZero("a\0b", 3);
  const std::string huge(10'000'000, 'x');

  EXPECT_EQ(Variant::FromString(withZero)->GetString(), withZero);
  EXPECT_EQ(Variant::FromString(huge)->GetString(), huge);
  EXPECT_EQ(Variant::FromString("")->GetString(), "");
}

TEST(Variant, KeepsContainersWithEmptyPointersInThem) {
  const auto text = Variant::FromString("a");

  EXPECT_EQ(Variant::FromVariantVector({text, nullptr})->GetVariantVector(),
            (VariantVector{text, nullptr}));
  EXPECT_EQ(Variant::FromVariantMap({{"k", text}, {"n", nullptr}})->GetVariantMap(),
            (VariantMap{{"k", text}, {"n", nullptr}}));
}

struct NumberCase {
  const char* name;
  std::function<std::shared_ptr<Variant>()> make;
  std::int32_t integer;
  std::int64_t whole;
  double number;

  friend std::ostream& operator<<(std::ostream& out, const NumberCase& numberCase) {
    return out << numberCase.name;
  }
};

std::function<std::shared_ptr<Variant>()> Integer(std::int32_t value) {
  return [value] { return Variant::FromInteger(value); };
}

std::function<std::shared_ptr<Variant>()> Long(std::int64_t value) {
  return [value] { return Variant::FromLong(value); };
}

std::function<std::shared_ptr<Variant>()> Double(double value) {
  return [value] { return Variant::FromDouble(value); };
}

class VariantNumbers : public testing::TestWithParam<NumberCase> {};

TEST_P(VariantNumbers, AreReadInEveryWidth) {
  const auto variant = GetParam().make();

  EXPECT_EQ(variant->GetInteger(), GetParam().integer);
  EXPECT_EQ(variant->GetLong(), GetParam().whole);
  if (std::isnan(GetParam().number)) {
    EXPECT_TRUE(std::isnan(variant->GetDouble()));
  } else {
    EXPECT_EQ(variant->GetDouble(), GetParam().number);
    EXPECT_EQ(std::signbit(variant->GetDouble()), std::signbit(GetParam().number));
  }
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kHuge = std::numeric_limits<double>::max();

INSTANTIATE_TEST_SUITE_P(Integers, VariantNumbers,
                         testing::Values(NumberCase{"zero", Integer(0), 0, 0, 0.0},
                                         NumberCase{"minus one", Integer(-1), -1, -1, -1.0},
                                         NumberCase{"lowest", Integer(kLowestInt), kLowestInt,
                                                    kLowestInt, -0x1p31},
                                         NumberCase{"highest", Integer(kHighestInt), kHighestInt,
                                                    kHighestInt, 2147483647.0}));

INSTANTIATE_TEST_SUITE_P(
    Longs, VariantNumbers,
    testing::Values(
        NumberCase{"zero", Long(0), 0, 0, 0.0},
        NumberCase{"highest int", Long(kHighestInt), kHighestInt, kHighestInt, 2147483647.0},
        NumberCase{"one above", Long(2147483648), kHighestInt, 2147483648, 0x1p31},
        NumberCase{"lowest int", Long(kLowestInt), kLowestInt, kLowestInt, -0x1p31},
        NumberCase{"one below", Long(-2147483649), kLowestInt, -2147483649, -2147483649.0},
        NumberCase{"2^53 + 1", Long(9007199254740993), kHighestInt, 9007199254740993, 0x1p53},
        NumberCase{"lowest", Long(kLowestLong), kLowestInt, kLowestLong, -0x1p63},
        NumberCase{"highest", Long(kHighestLong), kHighestInt, kHighestLong, 0x1p63}));

INSTANTIATE_TEST_SUITE_P(
    Doubles, VariantNumbers,
    testing::Values(
        NumberCase{"minus zero", Double(-0.0), 0, 0, -0.0},
        NumberCase{"3.7", Double(3.7), 3, 3, 3.7}, NumberCase{"-3.7", Double(-3.7), -3, -3, -3.7},
        NumberCase{"0.9", Double(0.9999999), 0, 0, 0.9999999},
        NumberCase{"denormal", Double(kTiny), 0, 0, kTiny},
        NumberCase{"just below 2^31", Double(2147483647.5), kHighestInt, kHighestInt, 2147483647.5},
        NumberCase{"2^31", Double(0x1p31), kHighestInt, 2147483648, 0x1p31},
        NumberCase{"-2^31", Double(-0x1p31), kLowestInt, kLowestInt, -0x1p31},
        NumberCase{"just below -2^31", Double(-2147483648.5), kLowestInt, kLowestInt,
                   -2147483648.5},
        NumberCase{"largest below 2^63", Double(9223372036854774784.0), kHighestInt,
                   9223372036854774784, 9223372036854774784.0},
        NumberCase{"2^63", Double(0x1p63), kHighestInt, kHighestLong, 0x1p63},
        NumberCase{"-2^63", Double(-0x1p63), kLowestInt, kLowestLong, -0x1p63},
        NumberCase{"below -2^63", Double(-9223372036854777856.0), kLowestInt, kLowestLong,
                   -9223372036854777856.0},
        NumberCase{"huge", Double(kHuge), kHighestInt, kHighestLong, kHuge},
        NumberCase{"minus huge", Double(-kHuge), kLowestInt, kLowestLong, -kHuge},
        NumberCase{"infinity", Double(kInfinity), kHighestInt, kHighestLong, kInfinity},
        NumberCase{"minus infinity", Double(-kInfinity), kLowestInt, kLowestLong, -kInfinity},
        NumberCase{"not a number", Double(std::nan("")), 0, 0, std::nan("")}));

struct GetterCase {
  const char* name;
  std::function<void(const Variant&)> read;
  std::vector<VariantKind> fitting;
  const char* message;  // for a null variant

  friend std::ostream& operator<<(std::ostream& out, const GetterCase& getterCase) {
    return out << getterCase.name;
  }
};

class VariantGetters : public testing::TestWithParam<GetterCase> {};

std::string CodeOf(const std::function<void()>& attempt) {
  try {
    attempt();
    return "";
  } catch (const SdkError& error) {
    return error.GetCode();
  }
}

TEST_P(VariantGetters, ThrowForEveryKindThatDoesNotFit) {
  const std::vector<std::shared_ptr<Variant>> oneOfEach = {Variant::FromNull(),
                                                           Variant::FromString("1"),
                                                           Variant::FromInteger(1),
                                                           Variant::FromLong(1),
                                                           Variant::FromDouble(1),
                                                           Variant::FromBoolean(true),
                                                           Variant::FromVariantVector({}),
                                                           Variant::FromVariantMap({})};
  for (const auto& variant : oneOfEach) {
    const auto& fitting = GetParam().fitting;
    const bool fits =
        std::find(fitting.begin(), fitting.end(), variant->GetKind()) != fitting.end();
    EXPECT_EQ(CodeOf([&] { GetParam().read(*variant); }), fits ? "" : "variant.wrong_kind")
        << "kind " << static_cast<int>(variant->GetKind());
  }
}

TEST_P(VariantGetters, NameBothKindsInTheMessage) {
  try {
    GetParam().read(*Variant::FromNull());
    FAIL() << "nothing was thrown";
  } catch (const SdkError& error) {
    EXPECT_EQ(error.GetMessage(), GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, VariantGetters,
    testing::Values(GetterCase{"GetString",
                               [](const Variant& variant) { variant.GetString(); },
                               {VariantKind::String},
                               "a null was read as a string"},
                    GetterCase{"GetInteger",
                               [](const Variant& variant) { variant.GetInteger(); },
                               {VariantKind::Integer, VariantKind::Long, VariantKind::Double},
                               "a null was read as a number"},
                    GetterCase{"GetLong",
                               [](const Variant& variant) { variant.GetLong(); },
                               {VariantKind::Integer, VariantKind::Long, VariantKind::Double},
                               "a null was read as a number"},
                    GetterCase{"GetDouble",
                               [](const Variant& variant) { variant.GetDouble(); },
                               {VariantKind::Integer, VariantKind::Long, VariantKind::Double},
                               "a null was read as a number"},
                    GetterCase{"GetBoolean",
                               [](const Variant& variant) { variant.GetBoolean(); },
                               {VariantKind::Boolean},
                               "a null was read as a boolean"},
                    GetterCase{"GetVariantVector",
                               [](const Variant& variant) { variant.GetVariantVector(); },
                               {VariantKind::VariantVector},
                               "a null was read as a vector"},
                    GetterCase{"GetVariantMap",
                               [](const Variant& variant) { variant.GetVariantMap(); },
                               {VariantKind::VariantMap},
                               "a null was read as a map"}));

struct EqualityCase {
  const char* name;
  std::shared_ptr<Variant> left;
  std::shared_ptr<Variant> right;
  bool equal;

  friend std::ostream& operator<<(std::ostream& out, const EqualityCase& equalityCase) {
    return out << equalityCase.name;
  }
};

class VariantEquality : public testing::TestWithParam<EqualityCase> {};

TEST_P(VariantEquality, HoldsBothWays) {
  EXPECT_EQ(Variant::AreEqual(GetParam().left, GetParam().right), GetParam().equal);
  EXPECT_EQ(Variant::AreEqual(GetParam().right, GetParam().left), GetParam().equal);
}

TEST_P(VariantEquality, HoldsForEveryVariantAndItself) {
  EXPECT_TRUE(Variant::AreEqual(GetParam().left, GetParam().left));
}

std::shared_ptr<Variant> Vector(VariantVector elements) {
  return Variant::FromVariantVector(std::move(elements));
}

std::shared_ptr<Variant> Map(VariantMap members) {
  return Variant::FromVariantMap(std::move(members));
}

INSTANTIATE_TEST_SUITE_P(
    Values, VariantEquality,
    testing::Values(
        EqualityCase{"no value twice", nullptr, nullptr, true},
        EqualityCase{"no value and null", nullptr, Variant::FromNull(), false},
        EqualityCase{"nulls", Variant::FromNull(), Variant::FromNull(), true},
        EqualityCase{"same text", Variant::FromString("a"), Variant::FromString("a"), true},
        EqualityCase{"other text", Variant::FromString("a"), Variant::FromString("b"), false},
        EqualityCase{"integers", Variant::FromInteger(7), Variant::FromInteger(7), true},
        EqualityCase{"other integer", Variant::FromInteger(7), Variant::FromInteger(8), false},
        EqualityCase{"integer and long", Variant::FromInteger(7), Variant::FromLong(7), false},
        EqualityCase{"long and double", Variant::FromLong(7), Variant::FromDouble(7), false},
        EqualityCase{"longs", Variant::FromLong(kHighestLong), Variant::FromLong(kHighestLong),
                     true},
        EqualityCase{"near longs", Variant::FromLong(kHighestLong),
                     Variant::FromLong(kHighestLong - 1), false},
        EqualityCase{"zeroes of both signs", Variant::FromDouble(0.0), Variant::FromDouble(-0.0),
                     true},
        EqualityCase{"not a number twice", Variant::FromDouble(std::nan("1")),
                     Variant::FromDouble(std::nan("2")), true},
        EqualityCase{"not a number and a number", Variant::FromDouble(std::nan("")),
                     Variant::FromDouble(0), false},
        EqualityCase{"booleans", Variant::FromBoolean(true), Variant::FromBoolean(true), true},
        EqualityCase{"other boolean", Variant::FromBoolean(true), Variant::FromBoolean(false),
                     false},
        EqualityCase{"boolean and integer", Variant::FromBoolean(true), Variant::FromInteger(1),
                     false}));

INSTANTIATE_TEST_SUITE_P(
    Containers, VariantEquality,
    testing::Values(
        EqualityCase{"empty vectors", Vector({}), Vector({}), true},
        EqualityCase{"empty vector and map", Vector({}), Map({}), false},
        EqualityCase{"same elements", Vector({Variant::FromInteger(1), nullptr}),
                     Vector({Variant::FromInteger(1), nullptr}), true},
        EqualityCase{"other order", Vector({Variant::FromInteger(1), Variant::FromInteger(2)}),
                     Vector({Variant::FromInteger(2), Variant::FromInteger(1)}), false},
        EqualityCase{"other length", Vector({Variant::FromInteger(1)}),
                     Vector({Variant::FromInteger(1), Variant::FromInteger(1)}), false},
        EqualityCase{"element missing on one side", Vector({nullptr}),
                     Vector({Variant::FromNull()}), false},
        EqualityCase{"same members", Map({{"a", Variant::FromString("1")}, {"b", nullptr}}),
                     Map({{"a", Variant::FromString("1")}, {"b", nullptr}}), true},
        EqualityCase{"other key", Map({{"a", Variant::FromInteger(1)}}),
                     Map({{"b", Variant::FromInteger(1)}}), false},
        EqualityCase{"other member", Map({{"a", Variant::FromInteger(1)}}),
                     Map({{"a", Variant::FromInteger(2)}}), false},
        EqualityCase{"nested", Map({{"a", Vector({Map({{"b", Variant::FromDouble(1.5)}})})}}),
                     Map({{"a", Vector({Map({{"b", Variant::FromDouble(1.5)}})})}}), true},
        EqualityCase{"nested difference",
                     Map({{"a", Vector({Map({{"b", Variant::FromDouble(1.5)}})})}}),
                     Map({{"a", Vector({Map({{"b", Variant::FromDouble(1.25)}})})}}), false}));

}  // namespace
}  // namespace Velmora
