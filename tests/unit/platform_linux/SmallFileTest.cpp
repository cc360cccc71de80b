#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/SmallFile.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::ReadSmallFile;
using TestSupport::TemporaryDirectory;

TEST(SmallFile, ReadsAllBytes) {
  const TemporaryDirectory folder;
  const std::string contents("a\0\xFF\n", 4);
  EXPECT_EQ(ReadSmallFile(folder.WriteFile("file", contents), 100), contents);
  EXPECT_EQ(ReadSmallFile(folder.WriteFile("empty", ""), 0), "");
}

TEST(SmallFile, ReadsUpToTheLimitAndRefusesMore) {
  const TemporaryDirectory folder;
  const std::string path = folder.WriteFile("file", std::string(10'000, 'x'));
  EXPECT_EQ(ReadSmallFile(path, 10'000), std::string(10'000, 'x'));
  EXPECT_EQ(ReadSmallFile(path, 9'999), std::nullopt);
  EXPECT_EQ(ReadSmallFile(path, 0), std::nullopt);
}

TEST(SmallFile, ReadsFilesWhoseSizeTheSystemDoesNotTell) {
  const auto status = ReadSmallFile("/proc/self/status", 100'000);
  ASSERT_TRUE(status.has_value());
  EXPECT_NE(status->find("Pid:"), std::string::npos);
}

TEST(SmallFile, GivesNothingForWhatIsNoFile) {
  const TemporaryDirectory folder;
  EXPECT_EQ(ReadSmallFile(folder.PathOf("missing"), 100), std::nullopt);
  EXPECT_EQ(ReadSmallFile(folder.Path(), 100), std::nullopt);
  EXPECT_EQ(ReadSmallFile("", 100), std::nullopt);
  EXPECT_EQ(ReadSmallFile("/dev/zero", 100), std::nullopt);
}

TEST(SmallFile, DoesNotWaitForTheOtherEndOfAPipe) {
  const TemporaryDirectory folder;
  ASSERT_EQ(::mkfifo(folder.PathOf("pipe").c_str(), 0600), 0);
  EXPECT_EQ(ReadSmallFile(folder.PathOf("pipe"), 100), std::nullopt);
}

}  // namespace
