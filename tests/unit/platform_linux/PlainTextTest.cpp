#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/PlainText.h"

namespace {

using Platform::PlainText;

TEST(PlainText, TakesBlanksAndLineEndsAway) {
  EXPECT_EQ(PlainText(" \tSome Board\r\n"), "Some Board");
  EXPECT_EQ(PlainText("\u00c4"), "\u00c4");
}

TEST(PlainText, GivesNothingForNothing) {
  EXPECT_EQ(PlainText(""), std::nullopt);
  EXPECT_EQ(PlainText(" \r\n\t"), std::nullopt);
}

TEST(PlainText, RefusesWhatWouldBreakALine) {
  EXPECT_EQ(PlainText("a\r\nInjected: yes"), std::nullopt);
  EXPECT_EQ(PlainText("a\tb"), std::nullopt);
  EXPECT_EQ(PlainText("a\x7f"), std::nullopt);
  EXPECT_EQ(PlainText(std::string("a\0b", 3)), std::nullopt);
}

TEST(PlainText, RefusesMalformedUtf8) { EXPECT_EQ(PlainText("a\xFF"), std::nullopt); }

TEST(PlainText, RefusesLongTexts) {
  EXPECT_EQ(PlainText(std::string(128, 'x')), std::string(128, 'x'));
  EXPECT_EQ(PlainText(std::string(129, 'x')), std::nullopt);
  EXPECT_EQ(PlainText(std::string(10'000'000, 'x')), std::nullopt);
}

}  // namespace
