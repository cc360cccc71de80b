#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "platform/linux/FileErrors.h"

namespace {

TEST(FileErrors, NamesActionPathAndReason) {
  EXPECT_EQ(Platform::DescribeFileFailure("open", "/a b/\xc3\xbc", "It is gone"),
            "Cannot open \"/a b/\xc3\xbc\": It is gone.");
}

TEST(FileErrors, ShowsBytesThatAreNoTextAsNumbers) {
  const std::string path("a\0\n\x1b\x7f\xff\xc3\xed\xa0\x80z", 11);
  EXPECT_EQ(Platform::DescribeFileFailure("open", path, "No"),
            "Cannot open \"a\\x00\\x0a\\x1b\\x7f\\xff\\xc3\\xed\\xa0\\x80z\": No.");
}

TEST(FileErrors, CutsPathsThatNoSystemTakes) {
  const std::string text =
      Platform::DescribeFileFailure("open", std::string(10'000'000, '\xff'), "No");
  EXPECT_LT(text.size(), 5000U);
  EXPECT_THAT(text, testing::EndsWith("...\": No."));
  EXPECT_TRUE(Platform::IsValidUtf8(text));
}

TEST(FileErrors, GivesTheSystemsReasons) {
  EXPECT_EQ(Platform::ReasonOf(ENOENT), "No such file or directory");
  EXPECT_EQ(Platform::ReasonOf(1'000'000), "unknown reason");
}

TEST(FileErrors, WritesDomainAndNumber) {
  Platform::Error error;
  Platform::WriteFileError(&error, "open", "/a", EACCES);
  EXPECT_EQ(error,
            Platform::Error("platform.files", EACCES, "Cannot open \"/a\": Permission denied."));
  Platform::WriteFileError(nullptr, "open", "/a", EACCES);
}

}  // namespace
