#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

TEST(ValueArray, KeepsItsElementsInOrder) {
  Value array = Value::Array();
  for (int i = 0; i < 1000; ++i) array.Append(i);
  ASSERT_EQ(array.Count(), 1000U);
  int expected = 0;
  for (const Value& item : array.Items()) EXPECT_EQ(item.AsInt32(), expected++);
  EXPECT_EQ(array.At(999).AsInt32(), 999);
}

TEST(ValueArray, HasNoElementBeyondItsEnd) {
  EXPECT_THROW(Value::Array({1}).At(1), std::out_of_range);
  EXPECT_THROW(Value::Array().At(0), std::out_of_range);
  EXPECT_THROW(Value("text").At(0), std::out_of_range);
}

TEST(ValueArray, RefusesAbsentElements) {
  Value array = Value::Array({1});
  EXPECT_THROW(array.Append({}), std::invalid_argument);
  EXPECT_EQ(array.Count(), 1U);
  EXPECT_THROW(Value::Array({1, {}}), std::invalid_argument);
  EXPECT_THROW(Value::FromVector({Value(1), Value()}), std::invalid_argument);
}

TEST(ValueArray, KeepsNullMarkers) { EXPECT_TRUE(Value::Array({Value::Null()}).At(0).IsNull()); }

TEST(ValueArray, IsWhatAppendAsksFor) {
  Value absent;
  EXPECT_THROW(absent.Append(1), std::logic_error);
  Value text = "text";
  EXPECT_THROW(text.Append(1), std::logic_error);
  EXPECT_EQ(text.AsString(), "text");
}

TEST(ValueArray, MayHoldACopyOfItself) {
  Value array = Value::Array({1});
  array.Append(array);
  array.Append(array.At(0));
  ASSERT_EQ(array.Count(), 3U);
  EXPECT_EQ(array.At(1).Count(), 1U);
  EXPECT_EQ(array.At(2).AsInt32(), 1);
}

TEST(ValueArray, MayBeReplacedByItsOwnElement) {
  Value array = Value::Array({Value::Array({"innermost text, too long to lie in place"})});
  array = array.At(0);
  array = array.At(0);
  EXPECT_EQ(array.AsString(), "innermost text, too long to lie in place");
}

TEST(ValueArray, TakesTheElementsOfAVector) {
  EXPECT_EQ(Value::FromVector({}).Count(), 0U);
  EXPECT_TRUE(Value::FromVector({}).IsArray());
  EXPECT_EQ(Value::FromVector(std::vector<Value>(100'000, Value("same"))).Count(), 100'000U);
}

}  // namespace
}  // namespace Platform
