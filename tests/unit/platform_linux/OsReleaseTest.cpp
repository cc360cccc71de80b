#include <string>

#include <gmock/gmock.h>

#include "platform/linux/OsRelease.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::ReadOsRelease;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using TestSupport::TemporaryDirectory;

// The assignments in an os-release of these contents.
std::map<std::string, std::string> Read(const std::string& contents) {
  const TemporaryDirectory folder;
  folder.WriteFile("etc/os-release", contents);
  return ReadOsRelease(folder.Path());
}

TEST(OsRelease, ReadsAssignments) {
  EXPECT_THAT(Read("NAME=Debian\nVERSION_ID=\"12\"\n"),
              ElementsAre(Pair("NAME", "Debian"), Pair("VERSION_ID", "12")));
}

TEST(OsRelease, UnquotesAsAShellWould) {
  EXPECT_THAT(Read("A=\"a b\"\nB='c d'\nC=\"say \\\"x\\\" \\$5 \\\\\"\nD='it'\\''s'\n"),
              ElementsAre(Pair("A", "a b"), Pair("B", "c d"), Pair("C", "say \"x\" $5 \\"),
                          Pair("D", "it's")));
}

TEST(OsRelease, ExpandsNothing) {
  EXPECT_THAT(Read("A=\"$(id) `id` $HOME\"\n"), ElementsAre(Pair("A", "$(id) `id` $HOME")));
}

TEST(OsRelease, SkipsCommentsAndLinesThatAreNoAssignment) {
  EXPECT_THAT(Read("# NAME=x\n\n  \nword\nNAME=Debian"), ElementsAre(Pair("NAME", "Debian")));
}

TEST(OsRelease, TakesTheLastOfTwoAssignments) {
  EXPECT_THAT(Read("NAME=First\nNAME=Second\n"), ElementsAre(Pair("NAME", "Second")));
}

TEST(OsRelease, ReadsLinesThatEndLikeThoseOfOtherSystems) {
  EXPECT_THAT(Read("NAME=Debian\r\nVERSION_ID=12\r\n"),
              ElementsAre(Pair("NAME", "Debian"), Pair("VERSION_ID", "12")));
}

TEST(OsRelease, LeavesOutValuesWhoseQuotesDoNotMatch) {
  EXPECT_THAT(Read("A=\"open\nB='open\nC=\"\\\nNAME=Debian\n"),
              ElementsAre(Pair("NAME", "Debian")));
}

TEST(OsRelease, LeavesOutHostileValues) {
  EXPECT_THAT(Read("A=\"a\x01"
                   "b\"\nB=\xFF\nC=" +
                   std::string(200, 'x') + "\nD=a" + std::string(1, '\0') + "b\nNAME=Debian\n"),
              ElementsAre(Pair("NAME", "Debian")));
}

TEST(OsRelease, PrefersEtcToUsrLib) {
  const TemporaryDirectory folder;
  folder.WriteFile("usr/lib/os-release", "NAME=Vendor\n");
  EXPECT_THAT(ReadOsRelease(folder.Path()), ElementsAre(Pair("NAME", "Vendor")));
  folder.WriteFile("etc/os-release", "NAME=Local\n");
  EXPECT_THAT(ReadOsRelease(folder.Path()), ElementsAre(Pair("NAME", "Local")));
}

TEST(OsRelease, IsEmptyWithoutAFile) {
  const TemporaryDirectory folder;
  EXPECT_THAT(ReadOsRelease(folder.Path()), IsEmpty());
}

TEST(OsRelease, IgnoresAFileThatIsTooLarge) {
  EXPECT_THAT(Read("NAME=Debian\n" + std::string(10'000'000, '\n')), IsEmpty());
}

TEST(OsRelease, SurvivesAFileOfManyOddLines) {
  std::string contents;
  while (contents.size() < 60'000) contents += "=\n==\n'='\n\\=\\\nNAME='\n";
  EXPECT_THAT(Read(contents), testing::Not(Contains(Pair("NAME", testing::_))));
}

}  // namespace
