#include <limits>
#include <memory>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"

namespace Platform {
namespace {

class NotADate final : public Object {
 public:
  std::string Description() const override { return "no date"; }
  bool Equals(const Object& other) const override { return this == &other; }
};

TEST(Date, DescribesItselfAsCalendarTimeInUniversalTime) {
  EXPECT_EQ(Date(0).Description(), "1970-01-01 00:00:00 +0000");
  EXPECT_EQ(Date(1709209800.75).Description(), "2024-02-29 12:30:00 +0000");
  EXPECT_EQ(Date(-0.5).Description(), "1969-12-31 23:59:59 +0000");
  EXPECT_EQ(Date(253402300799).Description(), "9999-12-31 23:59:59 +0000");
  EXPECT_EQ(Date(-62135596800).Description(), "0001-01-01 00:00:00 +0000");
}

TEST(Date, DescribesItselfAsSecondsBeyondTheCalendar) {
  EXPECT_EQ(Date(253402300800).Description(), "253402300800");
  EXPECT_EQ(Date(1e300).Description(), "1e+300");
  EXPECT_EQ(Date(-1e300).Description(), "-1e+300");
  EXPECT_EQ(Date(std::numeric_limits<double>::infinity()).Description(), "inf");
  EXPECT_EQ(Date(std::numeric_limits<double>::quiet_NaN()).Description(), "nan");
}

TEST(Date, EqualsADateOfTheSameSecondsOnly) {
  EXPECT_TRUE(Date(5).Equals(Date(5)));
  EXPECT_FALSE(Date(5).Equals(Date(5.5)));
  EXPECT_FALSE(Date(5).Equals(NotADate()));
  EXPECT_TRUE(Date(0.0).Equals(Date(-0.0)));
  EXPECT_EQ(Date(0.0).Hash(), Date(-0.0).Hash());
}

TEST(Date, OfNoNumberEqualsItself) {
  const double quiet = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(Date(quiet).Equals(Date(-quiet)));
  EXPECT_EQ(Date(quiet).Hash(), Date(-quiet).Hash());
}

TEST(Date, KeepsItsSecondsThroughAValue) {
  const Value value = Value::FromObject(std::make_shared<Date>(12.25));
  ASSERT_TRUE(value.IsObject());
  ASSERT_NE(value.AsObjectOf<Date>(), nullptr);
  EXPECT_EQ(value.AsObjectOf<Date>()->SecondsSince1970(), 12.25);
  EXPECT_EQ(value.AsObjectOf<NotADate>(), nullptr);
  EXPECT_EQ(Value("text").AsObjectOf<Date>(), nullptr);
}

}  // namespace
}  // namespace Platform
