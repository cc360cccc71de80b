#include <string>

#include <gtest/gtest.h>

#include "services/filesystem/PathText.h"

namespace {

using Velmora::PathText::Append;
using Velmora::PathText::Below;
using Velmora::PathText::Standardize;

TEST(PathText, PutsOneSeparatorBetweenPathAndComponent) {
  EXPECT_EQ(Append("/a/b", "c"), "/a/b/c");
  EXPECT_EQ(Append("/a/b/", "c"), "/a/b/c");
  EXPECT_EQ(Append("/a/b", "/c"), "/a/b/c");
  EXPECT_EQ(Append("/", "c"), "/c");
  EXPECT_EQ(Append("a", "b/c"), "a/b/c");
}

TEST(PathText, AddsNothingForAnEmptyComponent) {
  EXPECT_EQ(Append("/a/b", ""), "/a/b");
  EXPECT_EQ(Append("/", ""), "/");
  EXPECT_EQ(Append("", "a"), "a");
  EXPECT_EQ(Append("", ""), "");
}

TEST(PathText, FoldsRunsOfSeparatorsAndLeavesDots) {
  EXPECT_EQ(Append("//a//b//", "//c//"), "/a/b/c");
  EXPECT_EQ(Append("/a", ".."), "/a/..");
  EXPECT_EQ(Append("/a", "./b"), "/a/./b");
}

TEST(PathText, FindsNamesFromAPath) {
  EXPECT_EQ(Below("/a/b", "../c"), "/a/c");
  EXPECT_EQ(Below("/a", "/b"), "/a/b");
  EXPECT_EQ(Below("a", ".."), ".");
}

TEST(PathText, FoldsDots) {
  EXPECT_EQ(Standardize("/a/./b/../c"), "/a/c");
  EXPECT_EQ(Standardize("/a/b/.."), "/a");
  EXPECT_EQ(Standardize("/a//b///"), "/a/b");
  EXPECT_EQ(Standardize("a/./b"), "a/b");
  EXPECT_EQ(Standardize("/a/.../.b/..c"), "/a/.../.b/..c");
}

TEST(PathText, StaysAtTheRoot) {
  for (const char* path : {"/", "//", "/.", "/..", "/../..", "/a/../..", "/a/b/../../../.."}) {
    EXPECT_EQ(Standardize(path), "/") << path;
  }
  EXPECT_EQ(Standardize("/../a"), "/a");
}

TEST(PathText, KeepsLeadingStepsUpOfARelativePath) {
  EXPECT_EQ(Standardize(".."), "..");
  EXPECT_EQ(Standardize("../.."), "../..");
  EXPECT_EQ(Standardize("a/../../b"), "../b");
  EXPECT_EQ(Standardize("../a/.."), "..");
}

TEST(PathText, MakesARelativePathThatFoldsAwayADot) {
  EXPECT_EQ(Standardize("a/.."), ".");
  EXPECT_EQ(Standardize("."), ".");
  EXPECT_EQ(Standardize("./"), ".");
  EXPECT_EQ(Standardize(""), "");
}

TEST(PathText, TakesPathsOfAnyLengthAndDepth) {
  std::string path;
  std::string back;
  for (int level = 0; level < 1'000'000; ++level) {
    path += "/a";
    back += "/..";
  }
  EXPECT_EQ(Standardize(path), path);
  EXPECT_EQ(Standardize(Append(path, back)), "/");
  EXPECT_EQ(Standardize(std::string(10'000'000, '/')), "/");
}

}  // namespace
