#include <string>

#include <gtest/gtest.h>

#include "base/LogText.h"

namespace {

using Velmora::LogText::Readable;

TEST(LogTextTest, KeepsALineOneLine) {
  EXPECT_EQ(Readable(std::string("a\nb\tc\0d\x7F", 8)), "a?b?c?d?");
  EXPECT_EQ(Readable("\xC3\xA9 stays"), "\xC3\xA9 stays");
}

TEST(LogTextTest, CutsBetweenCharacters) {
  EXPECT_EQ(Readable("abcdef", 3), "abc");
  EXPECT_EQ(Readable("abc", 3), "abc");
  EXPECT_EQ(Readable("a\xE2\x82\xAC"
                     "b",
                     3),
            "a");
  EXPECT_EQ(Readable("a\xE2\x82\xAC"
                     "b",
                     4),
            "a\xE2\x82\xAC");
  EXPECT_EQ(Readable("\x80\x80\x80", 2), "");
  EXPECT_EQ(Readable(""), "");
}

}  // namespace
