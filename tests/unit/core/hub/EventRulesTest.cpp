#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "hub/EventRules.h"

namespace {

using Velmora::EventData;
using Velmora::Variant;
using Velmora::VariantMap;
using Velmora::VariantVector;
namespace EventRules = Velmora::EventRules;

bool IsSupported(std::shared_ptr<Variant> value) {
  EventData data;
  data.Put("key", std::move(value));
  return EventRules::AreDataSupported(&data);
}

TEST(EventRules, TypesAndSourcesArePlainText) {
  for (const char* text :
       {"a", "com.example.cart", "Wagen/öffnen", "\xF0\x9F\x9B\x92", "*", "a-b_c"}) {
    EXPECT_TRUE(EventRules::IsTypeOrSource(text)) << text;
  }
  EXPECT_TRUE(EventRules::IsTypeOrSource(std::string(255, 'x')));
}

TEST(EventRules, TypesAndSourcesAreRefusedOtherwise) {
  for (const std::string& text :
       {std::string(), std::string("a b"), std::string(" "), std::string("a\nb"),
        std::string("a\tb"), std::string("a\x7F"), std::string("a\0b", 3), std::string("a\xC2\x85"),
        std::string(256, 'x'), std::string(10'000'000, 'x')}) {
    EXPECT_FALSE(EventRules::IsTypeOrSource(text)) << text.substr(0, 20);
  }
}

TEST(EventRules, NamesMustBeUtf8) {
  for (const char* text :
       {"\x80", "\xC0\xAF", "\xC3", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE2\x82", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF", "a\xE2\x28\xA1"}) {
    EXPECT_FALSE(EventRules::IsTypeOrSource(text)) << testing::PrintToString(text);
    EXPECT_FALSE(EventRules::IsModuleName(text)) << testing::PrintToString(text);
  }
  for (const char* text : {"\xC2\xA9", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEF\xBF\xBD",
                           "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(EventRules::IsTypeOrSource(text)) << testing::PrintToString(text);
  }
}

TEST(EventRules, ModuleNamesMayHoldBlanksButNotOnlyBlanks) {
  EXPECT_TRUE(EventRules::IsModuleName("shopping cart"));
  EXPECT_TRUE(EventRules::IsModuleName(" x"));
  EXPECT_TRUE(EventRules::IsModuleName(std::string(255, 'x')));
  EXPECT_FALSE(EventRules::IsModuleName(""));
  EXPECT_FALSE(EventRules::IsModuleName("   "));
  EXPECT_FALSE(EventRules::IsModuleName("a\n"));
  EXPECT_FALSE(EventRules::IsModuleName(std::string(256, 'x')));
}

TEST(EventRules, DataMustBeWritableAsJson) {
  EXPECT_TRUE(EventRules::AreDataSupported(nullptr));
  EXPECT_TRUE(IsSupported(nullptr));
  EXPECT_TRUE(IsSupported(Variant::FromNull()));
  EXPECT_TRUE(IsSupported(Variant::FromBoolean(true)));
  EXPECT_TRUE(IsSupported(Variant::FromInteger(7)));
  EXPECT_TRUE(IsSupported(Variant::FromLong(1LL << 60)));
  EXPECT_TRUE(IsSupported(Variant::FromDouble(1e300)));
  EXPECT_TRUE(IsSupported(Variant::FromString(std::string("zero\0byte", 9))));
  EXPECT_TRUE(IsSupported(Variant::FromString(std::string(10'000'000, 'x'))));
  EXPECT_FALSE(IsSupported(Variant::FromDouble(std::numeric_limits<double>::quiet_NaN())));
  EXPECT_FALSE(IsSupported(Variant::FromDouble(-std::numeric_limits<double>::infinity())));
  EXPECT_FALSE(IsSupported(Variant::FromString("\xFF")));
}

TEST(EventRules, LooksIntoContainers) {
  const auto bad = Variant::FromString("\xC3");
  EXPECT_TRUE(IsSupported(Variant::FromVariantVector({Variant::FromString("fine"), nullptr})));
  EXPECT_FALSE(IsSupported(Variant::FromVariantVector({Variant::FromString("fine"), bad})));
  EXPECT_FALSE(IsSupported(Variant::FromVariantMap({{"fine", bad}})));
  EXPECT_FALSE(IsSupported(Variant::FromVariantMap({{"\xC3", Variant::FromNull()}})));
}

TEST(EventRules, UsesNoStackForNesting) {
  for (const int depth : {1'000, 100'000}) {
    std::shared_ptr<Variant> value = Variant::FromLong(1);
    for (int level = 0; level < depth; ++level) {
      value = level % 2 == 0 ? Variant::FromVariantVector({value})
                             : Variant::FromVariantMap({{"k", value}});
    }
    EXPECT_TRUE(IsSupported(value));
  }
}

TEST(EventRules, RefusesMoreValuesThanItCounts) {
  const auto number = Variant::FromLong(1);
  EXPECT_TRUE(IsSupported(
      Variant::FromVariantVector(VariantVector(EventRules::kMaxValueCount - 1, number))));
  EXPECT_FALSE(
      IsSupported(Variant::FromVariantVector(VariantVector(EventRules::kMaxValueCount, number))));

  // Few values that are shared often count as often as they are there.
  std::shared_ptr<Variant> value = number;
  for (int level = 0; level < 60; ++level) value = Variant::FromVariantVector({value, value});
  EXPECT_FALSE(IsSupported(value));
}

}  // namespace
