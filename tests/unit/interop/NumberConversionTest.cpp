#include <chrono>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "interop/NumberConversion.h"

namespace Velmora {
namespace {

using Platform::NumberType;
using Platform::Value;

TEST(ToNSNumber, TakesTheStorageOfItsArgument) {
  EXPECT_EQ(ToNSNumber(0.5).StorageType(), NumberType::Float64);
  EXPECT_EQ(ToNSNumber(0.5F).StorageType(), NumberType::Float32);
  EXPECT_EQ(ToNSNumber(5).StorageType(), NumberType::SInt32);
  EXPECT_EQ(ToNSNumber(5LL).StorageType(), NumberType::SInt64);
  EXPECT_EQ(ToNSNumber(std::int64_t{5}).StorageType(), NumberType::SInt64);
}

TEST(ToNSNumber, MakesABooleanOfABool) {
  EXPECT_TRUE(ToNSNumber(true).IsBoolean());
  EXPECT_TRUE(ToBool(ToNSNumber(true)));
  EXPECT_FALSE(ToBool(ToNSNumber(false)));
}

TEST(ToNSNumber, KeepsExtremes) {
  EXPECT_EQ(ToInt32(ToNSNumber(std::numeric_limits<int>::min())), std::numeric_limits<int>::min());
  EXPECT_EQ(ToInt64(ToNSNumber(std::numeric_limits<long long>::min())),
            std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ToInt64(ToNSNumber(std::numeric_limits<long long>::max())),
            std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(ToDouble(ToNSNumber(std::numeric_limits<double>::denorm_min())),
            std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(ToFloat(ToNSNumber(std::numeric_limits<float>::max())),
            std::numeric_limits<float>::max());
}

TEST(NumberReading, GivesTheValueAsTheTypeAskedFor) {
  EXPECT_EQ(ToDouble(Value(3)), 3.0);
  EXPECT_EQ(ToFloat(Value(0.1)), 0.1F);
  EXPECT_EQ(ToInt32(Value(-2.75)), -2);
  EXPECT_EQ(ToInt64(Value(2.75F)), 2);
  EXPECT_EQ(ToInt32(Value((1LL << 40) + 9)), 9);
  EXPECT_TRUE(ToBool(Value(0.5)));
  EXPECT_EQ(ToInt32(Value(true)), 1);
  EXPECT_EQ(ToDouble(Value(true)), 1.0);
}

TEST(NumberReading, GivesZeroForWhatIsNoNumber) {
  for (const Value& value : {Value(), Value("5"), Value::Null(), Value::Array({5})}) {
    EXPECT_EQ(ToDouble(value), 0.0);
    EXPECT_EQ(ToFloat(value), 0.0F);
    EXPECT_EQ(ToInt32(value), 0);
    EXPECT_EQ(ToInt64(value), 0);
    EXPECT_FALSE(ToBool(value));
  }
}

TEST(ToNSTimeInterval, CountsSeconds) {
  EXPECT_EQ(ToNSTimeInterval(std::chrono::seconds(90)), 90.0);
  EXPECT_EQ(ToNSTimeInterval(std::chrono::minutes(-2)), -120.0);
  EXPECT_EQ(ToNSTimeInterval(std::chrono::seconds::max()),
            static_cast<double>(std::chrono::seconds::max().count()));
}

}  // namespace
}  // namespace Velmora
