#include <filesystem>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "contract/FileManagerContract.h"
#include "support/ScopedEnvironment.h"

namespace FileManagerContract {
namespace {

namespace fs = std::filesystem;

using Platform::DirectoryEntry;
using Platform::Error;
using Platform::FileType;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

template <class Implementation>
class FileManagerContractTest : public Fixture<Implementation> {
 protected:
  std::vector<std::pair<std::string, FileType>> SortedContents(const std::string& path) {
    std::vector<std::pair<std::string, FileType>> entries;
    for (const DirectoryEntry& entry : this->manager_.ContentsOfDirectory(path, nullptr)) {
      entries.emplace_back(entry.name, entry.type);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
  }
};

TYPED_TEST_SUITE(FileManagerContractTest, Implementations);

TYPED_TEST(FileManagerContractTest, TellsTheTypeOfItems) {
  fs::create_directory(this->PathOf("folder"));
  this->WriteFile("file", "x");
  ASSERT_EQ(::mkfifo(this->PathOf("pipe").c_str(), 0600), 0);

  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("folder")), FileType::Directory);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("folder/")), FileType::Directory);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("file")), FileType::Regular);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("pipe")), FileType::Other);
  EXPECT_EQ(this->manager_.TypeOfItem("/dev/null"), FileType::Other);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("missing")), FileType::Missing);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("file/below")), FileType::Missing);
}

TYPED_TEST(FileManagerContractTest, FollowsLinksToTellTheType) {
  fs::create_directory(this->PathOf("folder"));
  fs::create_symlink(this->PathOf("folder"), this->PathOf("link"));
  fs::create_symlink(this->PathOf("nothing"), this->PathOf("dangling"));
  fs::create_symlink(this->PathOf("loop"), this->PathOf("loop"));

  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("link")), FileType::Directory);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("dangling")), FileType::Missing);
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf("loop")), FileType::Missing);
}

TYPED_TEST(FileManagerContractTest, FindsNothingAtImpossiblePaths) {
  for (const std::string& path : this->ImpossiblePaths()) {
    if (path.find_first_not_of('/') == std::string::npos && !path.empty()) continue;
    EXPECT_EQ(this->manager_.TypeOfItem(path), FileType::Missing);
    EXPECT_FALSE(this->manager_.AttributesOfItem(path));
  }
}

TYPED_TEST(FileManagerContractTest, RefusesToWorkOnImpossiblePaths) {
  for (const std::string& path : this->ImpossiblePaths()) {
    SCOPED_TRACE(path.substr(0, 20));
    Error error;
    EXPECT_FALSE(this->manager_.CreateDirectory(path, &error));
    EXPECT_NE(error, Error());
    EXPECT_LT(error.LocalizedDescription().size(), 5000U);
    error = Error();
    EXPECT_FALSE(this->manager_.RemoveItem(path, &error));
    EXPECT_NE(error, Error());
    error = Error();
    EXPECT_THAT(this->manager_.ContentsOfDirectory(path, &error), IsEmpty());
    EXPECT_NE(error, Error());
    error = Error();
    EXPECT_FALSE(this->manager_.ReadText(path, &error));
    EXPECT_NE(error, Error());
    EXPECT_FALSE(this->manager_.IsWritable(path));
    EXPECT_EQ(this->manager_.OpenForReading(path), nullptr);
    EXPECT_EQ(this->manager_.OpenForWriting(path, ""), nullptr);
  }
}

TYPED_TEST(FileManagerContractTest, DoesNotCutPathsAtAZeroByte) {
  this->WriteFile("file", "x");
  const std::string path = this->PathOf("file") + std::string("\0.txt", 5);
  Error error;
  EXPECT_FALSE(this->manager_.RemoveItem(path, &error));
  EXPECT_THAT(error.LocalizedDescription(), HasSubstr("file\\x00.txt"));
  EXPECT_TRUE(fs::exists(this->PathOf("file")));
}

TYPED_TEST(FileManagerContractTest, TellsWhatCanBeWritten) {
  this->WriteFile("file", "x");
  EXPECT_TRUE(this->manager_.IsWritable(this->folder_.Path()));
  EXPECT_TRUE(this->manager_.IsWritable(this->PathOf("file")));
  EXPECT_FALSE(this->manager_.IsWritable(this->PathOf("missing")));
}

TYPED_TEST(FileManagerContractTest, MakesADirectoryWithItsParents) {
  Error error;
  EXPECT_TRUE(this->manager_.CreateDirectory(this->PathOf("a/b/c/"), &error));
  EXPECT_TRUE(fs::is_directory(this->PathOf("a/b/c")));
  EXPECT_EQ(error, Error());
}

TYPED_TEST(FileManagerContractTest, IsContentWithADirectoryThatIsThere) {
  Error error;
  EXPECT_TRUE(this->manager_.CreateDirectory(this->folder_.Path(), &error));
  EXPECT_EQ(error, Error());
}

TYPED_TEST(FileManagerContractTest, NamesThePathThatCannotBecomeADirectory) {
  const std::string file = this->WriteFile("file", "x");
  for (const std::string& path : {file, file + "/below", file + "/far/below"}) {
    Error error;
    EXPECT_FALSE(this->manager_.CreateDirectory(path, &error));
    EXPECT_EQ(error.LocalizedDescription(),
              "Cannot create the directory \"" + path + "\": Not a directory.");
    EXPECT_FALSE(this->manager_.CreateDirectory(path, nullptr));
  }
  EXPECT_TRUE(fs::is_regular_file(file));
}

TYPED_TEST(FileManagerContractTest, MakesDirectoriesByWayOfLinksAndDots) {
  fs::create_directory(this->PathOf("folder"));
  fs::create_directory_symlink("folder", this->PathOf("link"));
  fs::create_symlink("nothing", this->PathOf("dangling"));
  EXPECT_TRUE(this->manager_.CreateDirectory(this->PathOf("link/a//./b/../c"), nullptr));
  EXPECT_TRUE(fs::is_directory(this->PathOf("folder/a/b")));
  EXPECT_TRUE(fs::is_directory(this->PathOf("folder/a/c")));
  EXPECT_TRUE(this->manager_.CreateDirectory(this->PathOf("link"), nullptr));
  Error error;
  EXPECT_FALSE(this->manager_.CreateDirectory(this->PathOf("dangling"), &error));
  EXPECT_EQ(error.LocalizedDescription(),
            "Cannot create the directory \"" + this->PathOf("dangling") + "\": File exists.");
  EXPECT_FALSE(this->manager_.CreateDirectory(this->PathOf("dangling/a"), nullptr));
}

TYPED_TEST(FileManagerContractTest, MakesOneDirectoryForManyThreads) {
  constexpr int kRounds = 50;
  for (int round = 0; round < kRounds; ++round) {
    const std::string path = this->PathOf(std::to_string(round) + "/a/b/c/d");
    bool first = false;
    bool second = false;
    std::thread other([&] { second = this->manager_.CreateDirectory(path, nullptr); });
    first = this->manager_.CreateDirectory(path, nullptr);
    other.join();
    EXPECT_TRUE(first && second);
  }
}

TYPED_TEST(FileManagerContractTest, RemovesFilesAndWholeDirectories) {
  this->WriteFile("file", "x");
  this->WriteFile("folder/below/file", "x");
  Error error;
  EXPECT_TRUE(this->manager_.RemoveItem(this->PathOf("file"), &error));
  EXPECT_TRUE(this->manager_.RemoveItem(this->PathOf("folder"), &error));
  EXPECT_TRUE(fs::is_empty(this->folder_.Path()));
  EXPECT_EQ(error, Error());
}

TYPED_TEST(FileManagerContractTest, RemovesFilesAndEmptyDirectoriesAlone) {
  this->WriteFile("file", "x");
  this->WriteFile("full/file", "x");
  fs::create_directory(this->PathOf("empty"));
  fs::create_directory_symlink(this->PathOf("full"), this->PathOf("link"));
  for (const char* name : {"file", "empty", "link"}) {
    EXPECT_TRUE(this->manager_.RemoveFileOrEmptyDirectory(this->PathOf(name), nullptr)) << name;
  }
  Error error;
  EXPECT_FALSE(this->manager_.RemoveFileOrEmptyDirectory(this->PathOf("full"), &error));
  EXPECT_EQ(error.LocalizedDescription(),
            "Cannot remove \"" + this->PathOf("full") + "\": Directory not empty.");
  EXPECT_FALSE(this->manager_.RemoveFileOrEmptyDirectory(this->PathOf("missing"), &error));
  EXPECT_TRUE(fs::exists(this->PathOf("full/file")));
}

TYPED_TEST(FileManagerContractTest, RemovesALinkAndNotWhatItPointsTo) {
  this->WriteFile("folder/file", "x");
  fs::create_directory_symlink(this->PathOf("folder"), this->PathOf("link"));
  fs::create_symlink(this->PathOf("nothing"), this->PathOf("dangling"));
  EXPECT_TRUE(this->manager_.RemoveItem(this->PathOf("link"), nullptr));
  EXPECT_TRUE(this->manager_.RemoveItem(this->PathOf("dangling"), nullptr));
  EXPECT_THAT(this->SortedContents(this->folder_.Path()),
              ElementsAre(std::pair("folder", FileType::Directory)));
  EXPECT_TRUE(fs::exists(this->PathOf("folder/file")));
}

TYPED_TEST(FileManagerContractTest, CannotRemoveWhatIsNotThere) {
  Error error;
  const std::string path = this->PathOf("missing");
  EXPECT_FALSE(this->manager_.RemoveItem(path, &error));
  EXPECT_EQ(error.LocalizedDescription(),
            "Cannot remove \"" + path + "\": No such file or directory.");
  EXPECT_FALSE(this->manager_.RemoveItem(path, nullptr));
}

TYPED_TEST(FileManagerContractTest, ListsADirectoryWithTypes) {
  this->WriteFile("file", "x");
  this->WriteFile("folder/below", "x");
  fs::create_symlink(this->PathOf("file"), this->PathOf("link"));
  ASSERT_EQ(::mkfifo(this->PathOf("pipe").c_str(), 0600), 0);
  EXPECT_THAT(
      this->SortedContents(this->folder_.Path()),
      ElementsAre(std::pair("file", FileType::Regular), std::pair("folder", FileType::Directory),
                  std::pair("link", FileType::Other), std::pair("pipe", FileType::Other)));
}

TYPED_TEST(FileManagerContractTest, ListsNamesThatAreNotUtf8) {
  const std::string name = "caf\xe9 \xff";
  this->WriteFile(name, "x");
  EXPECT_THAT(this->SortedContents(this->folder_.Path()),
              ElementsAre(std::pair(name, FileType::Regular)));
  EXPECT_EQ(this->manager_.TypeOfItem(this->PathOf(name)), FileType::Regular);
}

TYPED_TEST(FileManagerContractTest, DescribesErrorsInUtf8WhateverTheName) {
  Error error;
  EXPECT_FALSE(this->manager_.RemoveItem(this->PathOf("caf\xe9\n"), &error));
  EXPECT_THAT(error.LocalizedDescription(), HasSubstr("caf\\xe9\\x0a"));
  EXPECT_TRUE(Platform::IsValidUtf8(error.LocalizedDescription()));
}

TYPED_TEST(FileManagerContractTest, ListsAnEmptyDirectoryWithoutAnError) {
  Error error;
  EXPECT_THAT(this->manager_.ContentsOfDirectory(this->folder_.Path(), &error), IsEmpty());
  EXPECT_EQ(error, Error());
}

TYPED_TEST(FileManagerContractTest, SaysWhyADirectoryCannotBeListed) {
  const std::string file = this->WriteFile("file", "x");
  Error error;
  EXPECT_THAT(this->manager_.ContentsOfDirectory(file, &error), IsEmpty());
  EXPECT_EQ(error.LocalizedDescription(),
            "Cannot list the directory \"" + file + "\": Not a directory.");
  EXPECT_THAT(this->manager_.ContentsOfDirectory(this->PathOf("missing"), nullptr), IsEmpty());
}

TYPED_TEST(FileManagerContractTest, TellsSizeAndTimeOfChange) {
  const std::string path = this->WriteFile("file", "12345");
  const timespec times[2] = {{.tv_sec = 1, .tv_nsec = 0},
                             {.tv_sec = 1'700'000'000, .tv_nsec = 250'000'000}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  const auto attributes = this->manager_.AttributesOfItem(path);
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->size, 5);
  EXPECT_EQ(attributes->modified.time_since_epoch(), std::chrono::milliseconds(1'700'000'000'250));
  EXPECT_FALSE(this->manager_.AttributesOfItem(this->PathOf("missing")));
}

TYPED_TEST(FileManagerContractTest, TellsSizeAndTimeOfWhatALinkLeadsTo) {
  const std::string path = this->WriteFile("file", std::string(1'000, 'x'));
  const timespec times[2] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 1'000'000, .tv_nsec = 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  fs::create_symlink("file", this->PathOf("link"));
  fs::create_symlink("nothing", this->PathOf("dangling"));
  const auto attributes = this->manager_.AttributesOfItem(this->PathOf("link"));
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->size, 1'000);
  EXPECT_EQ(attributes->modified.time_since_epoch(), std::chrono::seconds(1'000'000));
  EXPECT_FALSE(this->manager_.AttributesOfItem(this->PathOf("dangling")));
}

TYPED_TEST(FileManagerContractTest, TellsSizesBeyondFourGigabytes) {
  const std::string path = this->WriteFile("large", "");
  constexpr std::int64_t kSize = std::int64_t{5} << 30;
  fs::resize_file(path, static_cast<std::uintmax_t>(kSize));
  const auto attributes = this->manager_.AttributesOfItem(path);
  ASSERT_TRUE(attributes);
  EXPECT_EQ(attributes->size, kSize);
}

TYPED_TEST(FileManagerContractTest, ReadsTextWhole) {
  Error error;
  const std::string text("Gr\xc3\xbc\xc3\x9f\x65\0 und\nmehr", 18);
  EXPECT_EQ(this->manager_.ReadText(this->WriteFile("file", text), &error), text);
  EXPECT_EQ(this->manager_.ReadText(this->WriteFile("empty", ""), &error), "");
  const std::string large(10'000'000, 'x');
  EXPECT_EQ(this->manager_.ReadText(this->WriteFile("large", large), &error), large);
  EXPECT_EQ(error, Error());
}

TYPED_TEST(FileManagerContractTest, ReadsFilesThatHideTheirSize) {
  Error error;
  const auto text = this->manager_.ReadText("/proc/self/status", &error);
  ASSERT_TRUE(text) << error.LocalizedDescription();
  EXPECT_THAT(*text, StartsWith("Name:"));
}

TYPED_TEST(FileManagerContractTest, SaysWhyTextCannotBeRead) {
  const auto reasonOf = [&](const std::string& path) {
    Error error;
    EXPECT_FALSE(this->manager_.ReadText(path, &error));
    EXPECT_FALSE(this->manager_.ReadText(path, nullptr));
    EXPECT_THAT(error.LocalizedDescription(), StartsWith("Cannot read the file \"" + path + "\""));
    return error.LocalizedDescription();
  };
  const std::string tooLarge = this->WriteFile("tooLarge", "");
  fs::resize_file(tooLarge, (std::uintmax_t{512} << 20) + 1);
  ASSERT_EQ(::mkfifo(this->PathOf("pipe").c_str(), 0600), 0);

  EXPECT_THAT(reasonOf(this->PathOf("missing")), HasSubstr(": No such file or directory."));
  EXPECT_THAT(reasonOf(this->folder_.Path()), HasSubstr(": Is a directory."));
  EXPECT_THAT(reasonOf(this->WriteFile("latin1", "caf\xe9")), HasSubstr(": It is not UTF-8 text."));
  EXPECT_THAT(reasonOf(tooLarge), HasSubstr(": It is larger than 512 MiB."));
  EXPECT_THAT(reasonOf(this->PathOf("pipe")), HasSubstr(": It is no regular file."));
  EXPECT_THAT(reasonOf("/dev/zero"), HasSubstr(": It is no regular file."));
}

TYPED_TEST(FileManagerContractTest, MakesAndEmptiesFiles) {
  EXPECT_NE(this->manager_.OpenForWriting(this->PathOf("new"), ""), nullptr);
  EXPECT_EQ(TestSupport::ReadFileBytes(this->PathOf("new")), "");
  const std::string full = this->WriteFile("full", "contents");
  fs::create_symlink("full", this->PathOf("link"));
  EXPECT_NE(this->manager_.OpenForWriting(this->PathOf("link"), ""), nullptr);
  EXPECT_EQ(TestSupport::ReadFileBytes(full), "");
  fs::create_symlink("target", this->PathOf("dangling"));
  EXPECT_NE(this->manager_.OpenForWriting(this->PathOf("dangling"), ""), nullptr);
  EXPECT_TRUE(fs::is_regular_file(this->PathOf("target")));
}

TYPED_TEST(FileManagerContractTest, SparesAFileByWhateverPath) {
  const std::string file = this->WriteFile("file", "contents");
  fs::create_symlink("file", this->PathOf("link"));
  fs::create_directory_symlink(".", this->PathOf("here"));
  fs::create_hard_link(file, this->PathOf("hard link"));
  const std::vector<std::string> paths = {"file", "./file", "link", "here/file", "hard link"};
  for (const std::string& path : paths) {
    for (const std::string& spared : paths) {
      EXPECT_EQ(this->manager_.OpenForWriting(this->PathOf(path), this->PathOf(spared)), nullptr);
    }
  }
  EXPECT_EQ(TestSupport::ReadFileBytes(file), "contents");

  fs::copy_file(file, this->PathOf("copy"));
  EXPECT_NE(this->manager_.OpenForWriting(this->PathOf("copy"), file), nullptr);
  EXPECT_NE(this->manager_.OpenForWriting(this->PathOf("new"), file), nullptr);
  EXPECT_NE(this->manager_.OpenForWriting(file, this->PathOf("missing")), nullptr);
  EXPECT_EQ(TestSupport::ReadFileBytes(this->PathOf("copy")), "");
}

TYPED_TEST(FileManagerContractTest, MakesNoFileWhereNoneCanBe) {
  ASSERT_EQ(::mkfifo(this->PathOf("pipe").c_str(), 0600), 0);
  fs::create_symlink("loop", this->PathOf("loop"));
  for (const std::string& path :
       {this->folder_.Path().string(), this->PathOf("missing/file"),
        this->WriteFile("file", "x") + "/below", this->PathOf("pipe"), this->PathOf("loop")}) {
    EXPECT_EQ(this->manager_.OpenForWriting(path, ""), nullptr) << path;
  }
}

TYPED_TEST(FileManagerContractTest, ReadsOnlyWhatIsAFile) {
  EXPECT_NE(this->manager_.OpenForReading(this->WriteFile("file", "x")), nullptr);
  EXPECT_EQ(this->manager_.OpenForReading(this->PathOf("missing")), nullptr);
  EXPECT_EQ(this->manager_.OpenForReading(this->folder_.Path()), nullptr);
}

TYPED_TEST(FileManagerContractTest, NamesTheCurrentDirectory) {
  const fs::path former = fs::current_path();
  fs::current_path(this->folder_.Path());
  EXPECT_EQ(this->manager_.CurrentDirectoryPath(), this->folder_.Path());
  EXPECT_TRUE(this->manager_.CreateDirectory("relative", nullptr));
  EXPECT_TRUE(fs::is_directory(this->PathOf("relative")));
  fs::current_path(former);
}

TYPED_TEST(FileManagerContractTest, NamesDirectoriesForCachesAndGroups) {
  const TestSupport::ScopedEnvironment home("HOME", "/home/someone");
  EXPECT_THAT(this->manager_.CachesDirectory(), StartsWith("/"));
  EXPECT_THAT(this->manager_.GroupContainerDirectory("group.com.example"),
              AllOf(StartsWith("/"), testing::EndsWith("/group.com.example")));
}

TYPED_TEST(FileManagerContractTest, HasNoContainerForAGroupThatLeadsElsewhere) {
  for (const char* group : {"", ".", "..", "a/b", "/", "../up", "/etc"}) {
    EXPECT_EQ(this->manager_.GroupContainerDirectory(group), "") << group;
  }
}

}  // namespace
}  // namespace FileManagerContract
