#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "interop/StringConversion.h"

namespace Velmora {
namespace {

using Platform::Value;
using std::string_literals::operator""s;

TEST(ToCppString, GivesTheTextOfAString) {
  EXPECT_EQ(ToCppString(std::optional<std::string>("text")), "text");
  EXPECT_EQ(ToCppString(Value("text")), "text");
  EXPECT_EQ(ToCppString(Value("\u00e9\U0001F600")), "\u00e9\U0001F600");
}

TEST(ToCppString, GivesEmptyTextForAnAbsentOrEmptyString) {
  EXPECT_EQ(ToCppString(std::optional<std::string>()), "");
  EXPECT_EQ(ToCppString(std::optional<std::string>("")), "");
  EXPECT_EQ(ToCppString(Value()), "");
  EXPECT_EQ(ToCppString(Value("")), "");
}

TEST(ToCppString, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(ToCppString(std::optional<std::string>("ab\0cd"s)), "ab");
  EXPECT_EQ(ToCppString(Value("ab\0cd"s)), "ab");
  EXPECT_EQ(ToCppString(Value("\0cd"s)), "");
}

TEST(ToCppString, GivesEmptyTextForWhatIsNoString) {
  for (const Value& value : {Value(5), Value(true), Value::Null(), Value::FromData({'a'}),
                             Value::Array({"a"}), Value({{"a", "b"}})}) {
    EXPECT_EQ(ToCppString(value), "");
  }
}

TEST(ToNSString, GivesTheText) {
  EXPECT_EQ(ToNSString("text"), "text");
  EXPECT_EQ(ToNSString("\u00e9\U0001F600"), "\u00e9\U0001F600");
}

TEST(ToNSString, GivesNothingForEmptyText) {
  EXPECT_EQ(ToNSString(""), std::nullopt);
  EXPECT_TRUE(ToNSStringValue("").IsAbsent());
}

TEST(ToNSString, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(ToNSString("ab\0cd"s), "ab");
  EXPECT_EQ(ToNSStringValue("ab\0cd"s).AsString(), "ab");
}

TEST(ToNSString, GivesNothingForTextThatBeginsWithAZeroByte) {
  EXPECT_EQ(ToNSString("\0ab"s), std::nullopt);
}

TEST(ToNSString, GivesNothingForBytesThatAreNoUtf8) {
  EXPECT_EQ(ToNSString("a\xFF"), std::nullopt);
  EXPECT_EQ(ToNSString("\xC3"), std::nullopt);
  EXPECT_EQ(ToNSString("\xED\xA0\x80"), std::nullopt);
  EXPECT_TRUE(ToNSStringValue("a\xFF").IsAbsent());
}

TEST(ToNSString, LooksAtNoByteBehindTheFirstZeroByte) { EXPECT_EQ(ToNSString("a\0\xFF"s), "a"); }

TEST(StringConversion, CarriesTenMegabytesBothWays) {
  std::string text;
  while (text.size() < 10'000'000) text += "text with \u20ac ";
  EXPECT_EQ(ToNSString(text), text);
  EXPECT_EQ(ToCppString(ToNSStringValue(text)), text);
}

}  // namespace
}  // namespace Velmora
