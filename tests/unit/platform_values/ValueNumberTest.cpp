#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

constexpr auto kLowest32 = std::numeric_limits<std::int32_t>::min();
constexpr auto kLargest32 = std::numeric_limits<std::int32_t>::max();
constexpr auto kLowest64 = std::numeric_limits<std::int64_t>::min();
constexpr auto kLargest64 = std::numeric_limits<std::int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(ValueNumber, TakesTheNarrowestStorageThatHoldsItsCppType) {
  EXPECT_EQ(Value(std::int8_t{1}).StorageType(), NumberType::SInt8);
  EXPECT_EQ(Value(std::uint8_t{1}).StorageType(), NumberType::SInt16);
  EXPECT_EQ(Value(std::int16_t{1}).StorageType(), NumberType::SInt16);
  EXPECT_EQ(Value(std::uint16_t{1}).StorageType(), NumberType::SInt32);
  EXPECT_EQ(Value(1).StorageType(), NumberType::SInt32);
  EXPECT_EQ(Value(1U).StorageType(), NumberType::SInt64);
  EXPECT_EQ(Value(1L).StorageType(), NumberType::SInt64);
  EXPECT_EQ(Value(1LL).StorageType(), NumberType::SInt64);
  EXPECT_EQ(Value(1ULL).StorageType(), NumberType::SInt64);
  EXPECT_EQ(Value(1.0F).StorageType(), NumberType::Float32);
  EXPECT_EQ(Value(1.0).StorageType(), NumberType::Float64);
}

TEST(ValueNumber, KeepsTheExtremesOfEveryCppType) {
  EXPECT_EQ(Value(std::numeric_limits<std::int8_t>::min()).AsInt64(), -128);
  EXPECT_EQ(Value(std::numeric_limits<std::uint8_t>::max()).AsInt64(), 255);
  EXPECT_EQ(Value(std::numeric_limits<std::uint16_t>::max()).AsInt64(), 65535);
  EXPECT_EQ(Value(std::numeric_limits<std::uint32_t>::max()).AsInt64(), 4294967295);
  EXPECT_EQ(Value(kLowest64).AsInt64(), kLowest64);
  EXPECT_EQ(Value(kLargest64).AsInt64(), kLargest64);
}

TEST(ValueNumber, BeyondSigned64BitsBecomesAFloat64) {
  const std::uint64_t beyond = std::uint64_t{1} << 63U;
  EXPECT_EQ(Value(beyond - 1).StorageType(), NumberType::SInt64);
  EXPECT_EQ(Value(beyond).StorageType(), NumberType::Float64);
  EXPECT_EQ(Value(beyond).AsDouble(), 9223372036854775808.0);
}

TEST(ValueNumber, KeepsEveryStorageTypeIncludingUnknownOnes) {
  for (int type = -3; type <= 40; ++type) {
    const Value number = Value::Number(static_cast<NumberType>(type), 5);
    EXPECT_TRUE(number.IsNumber());
    EXPECT_EQ(number.StorageType(), static_cast<NumberType>(type));
    EXPECT_EQ(number.AsInt32(), 5);
    EXPECT_EQ(number.AsDouble(), 5.0);
  }
  EXPECT_EQ(Value::Number(static_cast<NumberType>(1'000'000), 5).StorageType(),
            static_cast<NumberType>(1'000'000));
}

TEST(ValueNumber, LosesTheHighBitsThatItsStorageCannotHold) {
  EXPECT_EQ(Value::Number(NumberType::SInt8, 300).AsInt64(), 44);
  EXPECT_EQ(Value::Number(NumberType::Char, 255).AsInt64(), -1);
  EXPECT_EQ(Value::Number(NumberType::SInt16, 65535).AsInt64(), -1);
  EXPECT_EQ(Value::Number(NumberType::Short, 32768).AsInt64(), -32768);
  EXPECT_EQ(Value::Number(NumberType::SInt32, (1LL << 40) + 3).AsInt64(), 3);
  EXPECT_EQ(Value::Number(NumberType::Int, (1LL << 40) + 3).AsInt64(), 3);
  for (const NumberType type :
       {NumberType::SInt64, NumberType::Long, NumberType::LongLong, NumberType::CFIndex,
        NumberType::NSInteger, static_cast<NumberType>(99)}) {
    EXPECT_EQ(Value::Number(type, kLowest64).AsInt64(), kLowest64);
    EXPECT_EQ(Value::Number(type, kLargest64).AsInt64(), kLargest64);
  }
  EXPECT_EQ(Value::Number(NumberType::SInt64, ~std::uint64_t{0}).AsInt64(), -1);
}

TEST(ValueNumber, TakesTheNearestIntegerWhereItsStorageHoldsNoDoubles) {
  EXPECT_EQ(Value::Number(NumberType::SInt8, 1000.0).AsInt64(), 127);
  EXPECT_EQ(Value::Number(NumberType::SInt8, -1000.0).AsInt64(), -128);
  EXPECT_EQ(Value::Number(NumberType::SInt16, -128.9).AsInt64(), -128);
  EXPECT_EQ(Value::Number(NumberType::SInt64, kInfinity).AsInt64(), kLargest64);
  EXPECT_EQ(Value::Number(NumberType::NSInteger, -kInfinity).AsInt64(), kLowest64);
  EXPECT_EQ(Value::Number(NumberType::SInt64, kNotANumber).AsInt64(), 0);
}

TEST(ValueNumber, RoundsToASingleWhereItsStorageIsOne) {
  for (const NumberType type : {NumberType::Float32, NumberType::Float}) {
    EXPECT_EQ(Value::Number(type, 0.1).AsDouble(), static_cast<double>(0.1F));
    EXPECT_EQ(Value::Number(type, 1e300).AsDouble(), kInfinity);
    EXPECT_EQ(Value::Number(type, (1 << 24) + 1).AsInt64(), 1 << 24);
  }
  for (const NumberType type : {NumberType::Float64, NumberType::Double, NumberType::CGFloat}) {
    EXPECT_EQ(Value::Number(type, 0.1).AsDouble(), 0.1);
    EXPECT_EQ(Value::Number(type, ~std::uint64_t{0}).AsDouble(), 18446744073709551616.0);
  }
}

TEST(ValueNumber, ReadNarrowerKeepsItsLowBits) {
  EXPECT_EQ(Value::Number(NumberType::NSInteger, (1LL << 40) + 5).AsInt32(), 5);
  EXPECT_EQ(Value(kLowest64).AsInt32(), 0);
  EXPECT_EQ(Value(kLargest64).AsInt32(), -1);
  EXPECT_EQ(Value(0x80000000LL).AsInt32(), kLowest32);
}

TEST(ValueNumber, OfDoublesReadAsIntegersTakesTheNearest) {
  EXPECT_EQ(Value(3.99).AsInt32(), 3);
  EXPECT_EQ(Value(-3.99).AsInt64(), -3);
  EXPECT_EQ(Value(1e18).AsInt32(), kLargest32);
  EXPECT_EQ(Value(-1e18).AsInt32(), kLowest32);
  EXPECT_EQ(Value(2147483647.5).AsInt32(), kLargest32);
  EXPECT_EQ(Value(-2147483648.5).AsInt32(), kLowest32);
  EXPECT_EQ(Value(9223372036854775808.0).AsInt64(), kLargest64);
  EXPECT_EQ(Value(-9223372036854775808.0).AsInt64(), kLowest64);
  EXPECT_EQ(Value(kInfinity).AsInt64(), kLargest64);
  EXPECT_EQ(Value(-kInfinity).AsInt32(), kLowest32);
  EXPECT_EQ(Value(kNotANumber).AsInt32(), 0);
  EXPECT_EQ(Value(kNotANumber).AsInt64(), 0);
}

TEST(ValueNumber, ReadAsAFloatIsRoundedOnce) {
  EXPECT_EQ(Value(0.1).AsFloat(), 0.1F);
  EXPECT_EQ(Value(1e300).AsFloat(), std::numeric_limits<float>::infinity());
  EXPECT_EQ(Value(-1e300).AsFloat(), -std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(Value(kNotANumber).AsFloat()));
  // By way of a double, this integer would come out one step lower.
  const std::int64_t integer = (std::int64_t{1} << 60) + (std::int64_t{1} << 36) + 1;
  EXPECT_EQ(Value(integer).AsFloat(), static_cast<float>(integer));
}

TEST(ValueNumber, ReadAsABoolIsTrueUnlessItIsZero) {
  EXPECT_TRUE(Value(2).AsBool());
  EXPECT_TRUE(Value(1LL << 40).AsBool());
  EXPECT_TRUE(Value(0.25).AsBool());
  EXPECT_TRUE(Value(kNotANumber).AsBool());
  EXPECT_FALSE(Value(0).AsBool());
  EXPECT_FALSE(Value(-0.0).AsBool());
}

TEST(ValueNumber, ReadsABooleanAsOneOrZero) {
  EXPECT_EQ(Value(true).AsInt32(), 1);
  EXPECT_EQ(Value(true).AsInt64(), 1);
  EXPECT_EQ(Value(true).AsDouble(), 1.0);
  EXPECT_EQ(Value(true).AsFloat(), 1.0F);
  EXPECT_EQ(Value(false).AsInt32(), 0);
  EXPECT_EQ(Value(false).AsDouble(), 0.0);
}

}  // namespace
}  // namespace Platform
