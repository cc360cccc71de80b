#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Utf8.h"

namespace Platform {
namespace {

using std::string_view_literals::operator""sv;

// The character that `code` would have if every value up to 0x1FFFFF were one.
std::string Encode(unsigned code) {
  const auto tail = [code](unsigned shift) {
    return static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
  };
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) return {static_cast<char>(0xC0U | (code >> 6U)), tail(0)};
  if (code < 0x10000) return {static_cast<char>(0xE0U | (code >> 12U)), tail(6), tail(0)};
  return {static_cast<char>(0xF0U | (code >> 18U)), tail(12), tail(6), tail(0)};
}

TEST(Utf8, AcceptsExactlyTheUnicodeScalarValues) {
  for (unsigned code = 0; code <= 0x1FFFFF; ++code) {
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool expected = code <= 0x10FFFF && !isSurrogate;
    const std::string text = Encode(code);
    ASSERT_EQ(IsValidUtf8(text), expected) << code;
    ASSERT_EQ(Utf8CharacterLength(text + "x"), expected ? text.size() : 0) << code;
  }
}

TEST(Utf8, AcceptsEmptyTextAndZeroBytes) {
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8(std::string_view()));
  EXPECT_TRUE(IsValidUtf8("a\0b"sv));
  EXPECT_EQ(Utf8CharacterLength(""), 0U);
}

TEST(Utf8, RefusesOverLongForms) {
  EXPECT_FALSE(IsValidUtf8("\xC0\x80"));
  EXPECT_FALSE(IsValidUtf8("\xC1\xBF"));
  EXPECT_FALSE(IsValidUtf8("\xE0\x9F\xBF"));
  EXPECT_FALSE(IsValidUtf8("\xF0\x8F\xBF\xBF"));
}

TEST(Utf8, RefusesStrayAndMissingContinuations) {
  EXPECT_FALSE(IsValidUtf8("\x80"));
  EXPECT_FALSE(IsValidUtf8("\xBF"));
  EXPECT_FALSE(IsValidUtf8("a\xC3"));
  EXPECT_FALSE(IsValidUtf8("\xE2\x82"));
  EXPECT_FALSE(IsValidUtf8("\xF0\x9F\x98"));
  EXPECT_FALSE(IsValidUtf8("\xC3zz"));
  EXPECT_FALSE(IsValidUtf8("\xE2\x82z"));
  EXPECT_FALSE(IsValidUtf8("\xF0\x9F\x98z"));
  EXPECT_FALSE(IsValidUtf8("\xF5\x80\x80\x80"));
  EXPECT_FALSE(IsValidUtf8("\xFF"));
}

TEST(Utf8, FindsABadByteWhereverItStands) {
  for (std::size_t position = 0; position < 40; ++position) {
    std::string text(40, 'a');
    EXPECT_TRUE(IsValidUtf8(text));
    text[position] = '\xFE';
    EXPECT_FALSE(IsValidUtf8(text)) << position;
  }
}

TEST(Utf8, ReadsTenMegabytes) {
  std::string text;
  while (text.size() < 10'000'000) text += "plain and \u00e9\u20ac\U0001F600 ";
  EXPECT_TRUE(IsValidUtf8(text));
  text.pop_back();
  text += '\xC3';
  EXPECT_FALSE(IsValidUtf8(text));
}

}  // namespace
}  // namespace Platform
