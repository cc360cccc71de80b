#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

static_assert(sizeof(Value) <= 24);
static_assert(std::is_nothrow_move_constructible_v<Value>);
static_assert(std::is_nothrow_copy_constructible_v<Value>);
static_assert(!std::is_constructible_v<Value, std::nullptr_t>);
static_assert(!std::is_constructible_v<Value, const int*>);
static_assert(!std::is_constructible_v<Value, void*>);
static_assert(!std::is_constructible_v<Value, char>);
static_assert(!std::is_constructible_v<Value, std::shared_ptr<int>>);

enum PlainEnumeration { kPlainEnumerator };
static_assert(!std::is_constructible_v<Value, PlainEnumeration>);

// Takes a value the way that the public operations do.
Value Given(const Value& value) { return value; }

TEST(ValueConstruction, OfNothingIsAbsent) {
  EXPECT_TRUE(Value().IsAbsent());
  EXPECT_TRUE(Given({}).IsAbsent());
  EXPECT_TRUE(Given(static_cast<const char*>(nullptr)).IsAbsent());
  EXPECT_TRUE(Given(std::optional<std::string>()).IsAbsent());
  EXPECT_TRUE(Value::FromObject(nullptr).IsAbsent());
}

TEST(ValueConstruction, OfTextIsAString) {
  EXPECT_EQ(Given("text").AsString(), "text");
  EXPECT_EQ(Given(std::string("text")).AsString(), "text");
  EXPECT_EQ(Given(std::string_view("text")).AsString(), "text");
  EXPECT_EQ(Given(std::optional<std::string>("text")).AsString(), "text");
  EXPECT_TRUE(Given("").IsString());
  EXPECT_EQ(Given("").AsStringView(), "");
}

TEST(ValueConstruction, KeepsTextOfEveryLength) {
  for (std::size_t length = 0; length < 64; ++length) {
    const std::string text(length, 'x');
    const Value value(text);
    EXPECT_TRUE(value.IsString());
    EXPECT_EQ(value.AsString(), text);
  }
  const std::string large(10'000'000, 'y');
  EXPECT_EQ(Value(large).AsStringView(), large);
}

TEST(ValueConstruction, KeepsZeroBytesAndInvalidBytesInText) {
  const std::string text("a\0b\xFF", 4);
  EXPECT_EQ(Value(text).AsString(), text);
  EXPECT_EQ(Value("a\0b").AsString(), "a") << "a C string ends at its first zero byte";
}

TEST(ValueConstruction, OfBoolIsABooleanAndNoNumber) {
  EXPECT_TRUE(Given(true).IsBoolean());
  EXPECT_FALSE(Given(true).IsNumber());
  EXPECT_TRUE(Given(true).AsBool());
  EXPECT_FALSE(Given(false).AsBool());
  EXPECT_FALSE(Given(true).StorageType().has_value());
}

TEST(ValueConstruction, OfSeveralPairsIsADictionary) {
  const Value value = Given({{"sku", "A-17"}, {"size", "M"}});
  ASSERT_TRUE(value.IsDictionary());
  EXPECT_EQ(value.Count(), 2U);
  EXPECT_EQ(value.Get("sku").AsString(), "A-17");
  EXPECT_EQ(value.Get("size").AsString(), "M");
}

TEST(ValueConstruction, OfOnePairOfTextsIsADictionary) {
  const Value value = Given({{"a", "b"}});
  ASSERT_TRUE(value.IsDictionary());
  EXPECT_EQ(value.Count(), 1U);
  EXPECT_EQ(value.Get("a").AsString(), "b");
}

TEST(ValueConstruction, OfNestedPairsIsANestedDictionary) {
  const Value value = Given({{"outer", {{"a", "b"}}}});
  ASSERT_TRUE(value.Get("outer").IsDictionary());
  EXPECT_EQ(value.Get("outer").Get("a").AsString(), "b");
}

TEST(ValueConstruction, OfMixedPairsKeepsEachKind) {
  const Value value = {{"text", "x"},
                       {"flag", true},
                       {"count", 3},
                       {"ratio", 0.5},
                       {"list", Value::Array({1, "two"})},
                       {"none", {}},
                       {7, "seven"},
                       {"text", "later"}};
  EXPECT_EQ(value.Count(), 6U);
  EXPECT_EQ(value.Get("text").AsString(), "later");
  EXPECT_TRUE(value.Get("flag").IsBoolean());
  EXPECT_EQ(value.Get("count").StorageType(), NumberType::SInt32);
  EXPECT_EQ(value.Get("ratio").StorageType(), NumberType::Float64);
  EXPECT_EQ(value.Get("list").Count(), 2U);
  EXPECT_TRUE(value.Get("none").IsAbsent());
  EXPECT_EQ(value.Get(7).AsString(), "seven");
}

TEST(ValueConstruction, OfAPairWithAnAbsentKeyIsRefused) {
  EXPECT_THROW(Given({{{}, "value"}}), std::invalid_argument);
}

TEST(ValueConstruction, OfArrayLiteralsKeepsTheirElements) {
  EXPECT_EQ(Value::Array({"a", "b"}).Count(), 2U);
  EXPECT_EQ(Value::Array({"a"}).Count(), 1U);
  EXPECT_EQ(Value::Array({1}).At(0).AsInt32(), 1);
  EXPECT_EQ(Value::Array().Count(), 0U);
  const Value dictionaries = Value::Array({{{"a", "b"}}});
  ASSERT_EQ(dictionaries.Count(), 1U);
  EXPECT_EQ(dictionaries.At(0).Get("a").AsString(), "b");
  const Value arrays = Value::Array({Value::Array({1})});
  ASSERT_EQ(arrays.Count(), 1U);
  EXPECT_TRUE(arrays.At(0).IsArray());
}

TEST(ValueConstruction, BracesAroundAValueCopyIt) {
  const Value array = Value::Array({1, 2});
  const Value copy{array};
  EXPECT_TRUE(copy.IsArray());
  EXPECT_EQ(copy.Count(), 2U);
}

TEST(ValueConstruction, OfDataKeepsItsBytes) {
  const Value value = Value::FromData({0x00, 0xFF});
  EXPECT_TRUE(value.IsData());
  EXPECT_EQ(value.AsData(), (std::vector<std::uint8_t>{0x00, 0xFF}));
  EXPECT_TRUE(Value::FromData({}).IsData());
}

TEST(ValueConstruction, HasExactlyOneKind) {
  const std::vector<Value> values = {Value(),
                                     "text",
                                     1,
                                     true,
                                     Value::Array(),
                                     Value::Dictionary(),
                                     Value::Null(),
                                     Value::FromData({}),
                                     Value::FromObject(std::make_shared<Date>(0))};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Value& value = values[i];
    EXPECT_EQ(static_cast<std::size_t>(value.Kind()), i);
    const std::vector<bool> tests = {value.IsAbsent(),  value.IsString(), value.IsNumber(),
                                     value.IsBoolean(), value.IsArray(),  value.IsDictionary(),
                                     value.IsNull(),    value.IsData(),   value.IsObject()};
    for (std::size_t test = 0; test < tests.size(); ++test) EXPECT_EQ(tests[test], test == i);
  }
}

TEST(ValueConstruction, ReadsAsNothingWhatIsNotOfTheKindAskedFor) {
  const std::vector<Value> values = {Value(), Value::Null(), Value::FromData({1}),
                                     Value::FromObject(std::make_shared<Date>(1))};
  for (const Value& value : values) {
    EXPECT_EQ(value.AsStringView(), "");
    EXPECT_EQ(value.AsInt64(), 0);
    EXPECT_EQ(value.AsDouble(), 0);
    EXPECT_FALSE(value.AsBool());
    EXPECT_EQ(value.Count(), 0U);
    EXPECT_TRUE(value.Items().empty());
    EXPECT_TRUE(value.Get("key").IsAbsent());
    EXPECT_TRUE(value.Keys().empty());
    EXPECT_FALSE(value.StorageType().has_value());
  }
  EXPECT_TRUE(Value("text").AsData().empty());
  EXPECT_EQ(Value("12").AsInt32(), 0) << "text is no number";
}

}  // namespace
}  // namespace Platform
