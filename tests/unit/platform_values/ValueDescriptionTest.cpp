#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/Utf8.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

TEST(ValueDescription, OfAStringIsItsText) {
  EXPECT_EQ(Value("say \"hi\"\n").Description(), "say \"hi\"\n");
  EXPECT_EQ(Value("").Description(), "");
}

TEST(ValueDescription, OfScalarsIsReadable) {
  EXPECT_EQ(Value().Description(), "(null)");
  EXPECT_EQ(Value::Null().Description(), "<null>");
  EXPECT_EQ(Value(true).Description(), "true");
  EXPECT_EQ(Value(false).Description(), "false");
  EXPECT_EQ(Value(-5).Description(), "-5");
  EXPECT_EQ(Value(std::numeric_limits<std::int64_t>::min()).Description(), "-9223372036854775808");
  EXPECT_EQ(Value(0.1).Description(), "0.1");
  EXPECT_EQ(Value(0.1F).Description(), "0.1");
  EXPECT_EQ(Value(3.0).Description(), "3");
  EXPECT_EQ(Value(std::numeric_limits<double>::infinity()).Description(), "inf");
  EXPECT_EQ(Value::FromObject(std::make_shared<Date>(0)).Description(),
            "1970-01-01 00:00:00 +0000");
}

TEST(ValueDescription, OfDataShowsLengthAndFirstBytes) {
  EXPECT_EQ(Value::FromData({}).Description(), "<0 bytes>");
  EXPECT_EQ(Value::FromData({0x0A, 0xFF}).Description(), "<2 bytes: 0aff>");
  const std::string large = Value::FromData(std::vector<std::uint8_t>(1000, 0xAB)).Description();
  EXPECT_EQ(large.substr(0, 16), "<1000 bytes: aba");
  EXPECT_LT(large.size(), 100U);
}

TEST(ValueDescription, OfContainersIsOneLine) {
  const Value value = {{"sku", "A-17"},
                       {"sizes", Value::Array({1, true, "M\n\t\"\\", Value::Null()})},
                       {5, Value::Dictionary()},
                       {"empty", Value::Array()}};
  EXPECT_EQ(value.Description(),
            R"({"sku": "A-17", "sizes": [1, true, "M\n\t\"\\", <null>], 5: {}, "empty": []})");
}

TEST(ValueDescription, ShowsContainersThatAreKeys) {
  Value value = Value::Dictionary();
  value.Set(Value::Array({1, 2}), {{"a", "b"}});
  value.Set("next", 3);
  EXPECT_EQ(value.Description(), R"({[1, 2]: {"a": "b"}, "next": 3})");
}

TEST(ValueDescription, LeavesOutRemovedEntries) {
  Value value = {{"a", 1}, {"b", 2}, {"c", 3}};
  value.Remove("a");
  EXPECT_EQ(value.Description(), R"({"b": 2, "c": 3})");
  value.Remove("c");
  EXPECT_EQ(value.Description(), R"({"b": 2})");
}

TEST(ValueDescription, EscapesControlCharactersInsideContainers) {
  const Value value = Value::Array({std::string("\0\x1b\x7f\r", 4)});
  EXPECT_EQ(value.Description(), R"(["\u0000\u001b\u007f\r"])");
}

TEST(ValueDescription, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(Value("a\xFF\xC3").Description(), "a\uFFFD\uFFFD");
  EXPECT_EQ(Value::Array({"\xE2\x82z\u00e9"}).Description(), "[\"\uFFFD\uFFFDz\u00e9\"]");
}

TEST(ValueDescription, StopsAtItsLimitBetweenCharacters) {
  std::string text = "x";
  while (text.size() < 3'000'000) text += "\u20ac";
  for (const Value& value : {Value(text), Value::Array({text}), Value({{text, text}})}) {
    const std::string description = value.Description();
    EXPECT_LE(description.size(), (std::size_t{1} << 20) + 3);
    EXPECT_GT(description.size(), (std::size_t{1} << 20) - 4);
    EXPECT_EQ(description.substr(description.size() - 3), "...");
    EXPECT_TRUE(IsValidUtf8(description));
  }
}

TEST(ValueDescription, CutsDeepNestingShort) {
  Value value = "innermost";
  for (int i = 0; i < 64; ++i) value = Value::Array({value});
  EXPECT_NE(value.Description().find("innermost"), std::string::npos);
  value = Value::Array({value});
  std::string expected(64, '[');
  expected += "...";
  expected.append(64, ']');
  EXPECT_EQ(value.Description(), expected);
}

// A value of a few hundred bytes that would be written out as more text than there is memory.
TEST(ValueDescription, EndsForContentThatIsSharedManyTimes) {
  Value value = "leaf";
  for (int i = 0; i < 60; ++i) value = Value::Array({value, value});
  EXPECT_LE(value.Description().size(), (std::size_t{1} << 20) + 3);
}

}  // namespace
}  // namespace Platform
