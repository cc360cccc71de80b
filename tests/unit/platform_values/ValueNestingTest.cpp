#include <utility>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

constexpr int kDepth = 200'000;

Value NestedArrays(int depth) {
  Value value = "innermost";
  for (int i = 0; i < depth; ++i) {
    Value outer = Value::Array();
    outer.Append(std::move(value));
    value = std::move(outer);
  }
  return value;
}

Value NestedDictionaries(int depth, const char* innermost = "innermost") {
  Value value = innermost;
  for (int i = 0; i < depth; ++i) {
    Value outer = Value::Dictionary();
    outer.Set("inside", std::move(value));
    value = std::move(outer);
  }
  return value;
}

// Each dictionary is the key of the next one.
Value NestedKeys(int depth, const char* innermost = "innermost") {
  Value value = innermost;
  for (int i = 0; i < depth; ++i) {
    Value outer = Value::Dictionary();
    outer.Set(std::move(value), i);
    value = std::move(outer);
  }
  return value;
}

TEST(ValueNesting, MayBeAsDeepAsMemoryAllows) {
  for (const Value& value :
       {NestedArrays(kDepth), NestedDictionaries(kDepth), NestedKeys(kDepth)}) {
    const Value copy = value;
    EXPECT_EQ(copy, value);
    EXPECT_EQ(value.Count(), 1U);
    EXPECT_NE(value.Description().find("..."), std::string::npos);
  }
}

TEST(ValueNesting, IsComparedToItsEnd) {
  EXPECT_EQ(NestedArrays(kDepth), NestedArrays(kDepth));
  EXPECT_NE(NestedArrays(kDepth), NestedArrays(kDepth - 1));
  EXPECT_EQ(NestedDictionaries(kDepth), NestedDictionaries(kDepth));
  EXPECT_NE(NestedDictionaries(kDepth), NestedDictionaries(kDepth, "other"));
  EXPECT_EQ(NestedKeys(kDepth), NestedKeys(kDepth));
  EXPECT_NE(NestedKeys(kDepth), NestedKeys(kDepth, "other"));
}

TEST(ValueNesting, MayBeLookedUpByADeepKey) {
  Value dictionary = Value::Dictionary();
  dictionary.Set(NestedKeys(kDepth), "found");
  for (int i = 0; i < 20; ++i) dictionary.Set(i, i);
  EXPECT_EQ(dictionary.Get(NestedKeys(kDepth)).AsString(), "found");
  dictionary.Remove(NestedKeys(kDepth));
  EXPECT_EQ(dictionary.Count(), 20U);
}

TEST(ValueNesting, IsUnsharedOneLevelAtATime) {
  const Value original = NestedDictionaries(kDepth);
  Value changed = original;
  changed.Set("new", 1);
  EXPECT_EQ(original.Count(), 1U);
  EXPECT_EQ(changed.Count(), 2U);
  EXPECT_EQ(changed.Get("inside"), original.Get("inside"));
}

TEST(ValueNesting, IsReleasedWhereSharingEnds) {
  Value outer = NestedDictionaries(kDepth);
  Value inner = outer;
  for (int i = 0; i < kDepth / 2; ++i) inner = inner.Get("inside");
  outer = {};
  int left = 0;
  for (; inner.IsDictionary(); ++left) inner = inner.Get("inside");
  EXPECT_EQ(left, kDepth / 2);
  EXPECT_EQ(inner.AsString(), "innermost");
}

TEST(ValueNesting, MayBeTakenApartWhileItIsHeld) {
  Value value = NestedArrays(1000);
  while (value.IsArray()) value = value.At(0);
  EXPECT_EQ(value.AsString(), "innermost");
}

}  // namespace
}  // namespace Platform
