#include <thread>

#include <sys/stat.h>

#include "VelmoraCore/SdkError.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "unit/filesystem/FileSystemFixture.h"

namespace {

namespace fs = std::filesystem;

using Platform::Error;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using TestSupport::FileFault;
using TestSupport::LogLevel;
using Velmora::SdkError;

class NativeFileSystemServiceTest : public FileSystemFixture {
 protected:
  void ExpectDebug(const std::string& message) {
    log_.ExpectLine(LogLevel::Debug, "NativeFileSystemService", message);
  }
  void ExpectError(const std::string& message) {
    log_.ExpectLine(LogLevel::Error, "NativeFileSystemService", message);
  }

  // The message of the SdkError that `operation` throws.
  template <class Operation>
  std::string MessageOf(Operation&& operation) {
    try {
      operation();
    } catch (const SdkError& error) {
      EXPECT_EQ(error.GetCode(), "filesystem");
      EXPECT_EQ(error.GetDebugInfo().GetSourceLocation(),
                "src/services/filesystem/NativeFileSystemService");
      EXPECT_GT(error.GetDebugInfo().GetLine(), 0);
      EXPECT_NE(error.GetDebugInfo().GetStackTrace(), "");
      return error.GetMessage();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
  }

  std::shared_ptr<Velmora::FileSystemServiceInterface> service_ =
      Velmora::CreateNativeFileSystemService();
};

TEST_F(NativeFileSystemServiceTest, MakesADirectoryWithItsParents) {
  EXPECT_TRUE(service_->MakeDirectory(PathOf("a/b/c")));
  EXPECT_TRUE(fs::is_directory(PathOf("a/b/c")));
}

TEST_F(NativeFileSystemServiceTest, IsContentWithADirectoryThatIsThere) {
  EXPECT_TRUE(service_->MakeDirectory(folder_.Path()));
}

TEST_F(NativeFileSystemServiceTest, MakesNoDirectoryInPlaceOfAFile) {
  const std::string file = WriteFile("file");
  ASSERT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
  ExpectDebug("Can't create directory " + file + " because it is already a file");
  EXPECT_FALSE(service_->MakeDirectory(file));
  ExpectDebug("Can't create directory " + PathOf("pipe") + " because it is already a file");
  EXPECT_FALSE(service_->MakeDirectory(PathOf("pipe")));
}

TEST_F(NativeFileSystemServiceTest, ThrowsWhyADirectoryCannotBeMade) {
  const std::string path = WriteFile("file") + "/below";
  EXPECT_EQ(MessageOf([&] { service_->MakeDirectory(path); }),
            "Cannot create the directory \"" + path + "\": Not a directory.");
}

TEST_F(NativeFileSystemServiceTest, ThrowsForPathsThatTheSystemDoesNotTake) {
  MessageOf([&] { service_->MakeDirectory("/" + std::string(300, 'n')); });
  MessageOf([&] { service_->MakeDirectory(std::string(10'000'000, 'p')); });
  MessageOf([&] { service_->MakeDirectory(PathOf(std::string("a\0b", 3))); });
  fs::create_symlink(PathOf("loop"), PathOf("loop"));
  MessageOf([&] { service_->MakeDirectory(PathOf("loop/below")); });
  EXPECT_FALSE(Exists(PathOf("a")));
}

TEST_F(NativeFileSystemServiceTest, LogsADirectoryThatFailsWithoutAnError) {
  host_.fileManager->FailSilently(FileFault::CreateDirectory);
  ExpectDebug("Failed to create directory " + PathOf("a") + " but no error returned");
  EXPECT_FALSE(service_->MakeDirectory(PathOf("a")));
}

TEST_F(NativeFileSystemServiceTest, DeletesAnEmptyDirectory) {
  fs::create_directory(PathOf("empty"));
  ExpectDebug("Deleted directory: " + PathOf("empty"));
  EXPECT_TRUE(service_->DeleteDirectory(PathOf("empty")));
  EXPECT_FALSE(Exists(PathOf("empty")));
}

TEST_F(NativeFileSystemServiceTest, CountsAMissingItemAsDeleted) {
  EXPECT_TRUE(service_->DeleteDirectory(PathOf("missing")));
  EXPECT_TRUE(service_->DeleteFile(PathOf("missing")));
  EXPECT_TRUE(service_->DeleteFile(WriteFile("file") + "/below"));
}

TEST_F(NativeFileSystemServiceTest, DeletesNoDirectoryThatHoldsAnything) {
  WriteFile("withFile/file");
  fs::create_directories(PathOf("withFolder/empty"));
  fs::create_directory(PathOf("withLink"));
  fs::create_symlink("nowhere", PathOf("withLink/dangling"));
  for (const char* name : {"withFile", "withFolder", "withLink"}) {
    ExpectDebug("Can't delete directory " + PathOf(name) + " because it has files");
    EXPECT_FALSE(service_->DeleteDirectory(PathOf(name)));
  }
  EXPECT_TRUE(Exists(PathOf("withFile/file")));
  EXPECT_TRUE(Exists(PathOf("withFolder/empty")));
  EXPECT_TRUE(Exists(PathOf("withLink/dangling")));
}

TEST_F(NativeFileSystemServiceTest, DeletesNoFileAsADirectory) {
  const std::string file = WriteFile("file");
  ExpectDebug("Can't delete directory " + file + " because it is a file");
  EXPECT_FALSE(service_->DeleteDirectory(file));
  EXPECT_TRUE(Exists(file));
}

TEST_F(NativeFileSystemServiceTest, LogsAndThrowsWhyADirectoryStays) {
  fs::create_directory(PathOf("empty"));
  host_.fileManager->Fail(FileFault::RemoveItem, Error("test", 1, "It is held."));
  ExpectError("Failed to delete directory " + PathOf("empty") + ":\nIt is held.");
  EXPECT_EQ(MessageOf([&] { service_->DeleteDirectory(PathOf("empty")); }), "It is held.");
}

TEST_F(NativeFileSystemServiceTest, DeletesNoDirectoryThatCannotBeListed) {
  WriteFile("folder/file");
  host_.fileManager->Fail(FileFault::ContentsOfDirectory, Error("test", 1, "It is held."));
  const std::string reason = "Cannot remove \"" + PathOf("folder") + "\": Directory not empty.";
  ExpectError("Failed to delete directory " + PathOf("folder") + ":\n" + reason);
  EXPECT_EQ(MessageOf([&] { service_->DeleteDirectory(PathOf("folder")); }), reason);
  EXPECT_TRUE(Exists(PathOf("folder/file")));
}

TEST_F(NativeFileSystemServiceTest, ThrowsForADirectoryThatTheSystemKeeps) {
  const std::string here = PathOf("here");
  fs::create_directory(here);
  const std::string path = here + "/.";
  const std::string reason = "Cannot remove \"" + path + "\": Invalid argument.";
  ExpectError("Failed to delete directory " + path + ":\n" + reason);
  EXPECT_EQ(MessageOf([&] { service_->DeleteDirectory(path); }), reason);
  EXPECT_TRUE(Exists(here));
}

TEST_F(NativeFileSystemServiceTest, LogsADirectoryThatStaysWithoutAnError) {
  fs::create_directory(PathOf("empty"));
  host_.fileManager->FailSilently(FileFault::RemoveItem);
  ExpectDebug("Failed to delete directory " + PathOf("empty") + " but no error returned");
  EXPECT_FALSE(service_->DeleteDirectory(PathOf("empty")));
}

TEST_F(NativeFileSystemServiceTest, DeletesFiles) {
  const std::string file = WriteFile("file");
  ASSERT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
  ExpectDebug("Deleted file successfully: " + file);
  EXPECT_TRUE(service_->DeleteFile(file));
  ExpectDebug("Deleted file successfully: " + PathOf("pipe"));
  EXPECT_TRUE(service_->DeleteFile(PathOf("pipe")));
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(NativeFileSystemServiceTest, DeletesALinkAndNotTheFileBehindIt) {
  const std::string file = WriteFile("file");
  fs::create_symlink(file, PathOf("link"));
  ExpectDebug("Deleted file successfully: " + PathOf("link"));
  EXPECT_TRUE(service_->DeleteFile(PathOf("link")));
  EXPECT_TRUE(Exists(file));
}

TEST_F(NativeFileSystemServiceTest, DeletesNoDirectoryAsAFile) {
  fs::create_directory(PathOf("empty"));
  ExpectDebug("Can't delete " + PathOf("empty") + " because it is a directory");
  EXPECT_FALSE(service_->DeleteFile(PathOf("empty")));
  EXPECT_TRUE(Exists(PathOf("empty")));
}

TEST_F(NativeFileSystemServiceTest, LogsAndThrowsWhyAFileStays) {
  const std::string file = WriteFile("file");
  host_.fileManager->Fail(FileFault::RemoveItem, Error("test", 1, "It is held."));
  ExpectError("Failed to delete file " + file + ":\nIt is held.");
  EXPECT_EQ(MessageOf([&] { service_->DeleteFile(file); }), "It is held.");
}

TEST_F(NativeFileSystemServiceTest, ThrowsForAFileThatTheSystemKeeps) {
  const std::string path = "/proc/self/status";
  log_.ExpectLine(
      LogLevel::Error, "NativeFileSystemService",
      testing::StartsWith("Failed to delete file " + path + ":\nCannot remove \"" + path + "\": "));
  EXPECT_THAT(MessageOf([&] { service_->DeleteFile(path); }),
              testing::StartsWith("Cannot remove \"" + path + "\": "));
}

TEST_F(NativeFileSystemServiceTest, LogsAFileThatStaysWithoutAnError) {
  const std::string file = WriteFile("file");
  host_.fileManager->FailSilently(FileFault::RemoveItem);
  ExpectDebug("Failed to delete file " + file + " but no error returned");
  EXPECT_FALSE(service_->DeleteFile(file));
}

TEST_F(NativeFileSystemServiceTest, KnowsDirectories) {
  const std::string file = WriteFile("file");
  fs::create_directory_symlink(folder_.Path(), PathOf("link"));
  for (const std::string& path : {folder_.Path().string(), PathOf("link"), std::string("/")}) {
    EXPECT_TRUE(service_->IsDirectory(path));
    EXPECT_TRUE(service_->DirectoryExists(path));
  }
  for (const std::string& path : {file, PathOf("missing"), file + "/below"}) {
    EXPECT_FALSE(service_->IsDirectory(path));
    EXPECT_FALSE(service_->DirectoryExists(path));
  }
}

TEST_F(NativeFileSystemServiceTest, KnowsWhatCanBeWritten) {
  EXPECT_TRUE(service_->DirectoryIsWritable(folder_.Path()));
  EXPECT_FALSE(service_->DirectoryIsWritable(PathOf("missing")));
}

TEST_F(NativeFileSystemServiceTest, ListsEveryEntryButNothingBelow) {
  WriteFile("file");
  WriteFile("caf\xe9");
  WriteFile("folder/below");
  fs::create_symlink(PathOf("file"), PathOf("link"));
  EXPECT_THAT(service_->GetDirectoryContents(folder_.Path()),
              UnorderedElementsAre("file", "caf\xe9", "folder", "link"));
}

TEST_F(NativeFileSystemServiceTest, TakesNamesThatAreNotUtf8) {
  const std::string directory = PathOf("caf\xe9");
  EXPECT_TRUE(service_->MakeDirectory(directory));
  const std::string file = WriteFile("caf\xe9/\xff\xfe.txt", "text");
  EXPECT_THAT(service_->GetDirectoryContents(folder_.Path()), ElementsAre("caf\xe9"));
  EXPECT_THAT(service_->GetDirectoryFiles(directory), ElementsAre("\xff\xfe.txt"));
  EXPECT_EQ(service_->ReadStringFromFile(file), "text");
  ExpectDebug("Deleted file successfully: " + file);
  EXPECT_TRUE(service_->DeleteFile(file));
  EXPECT_EQ(MessageOf([&] { service_->ReadStringFromFile(file); }),
            "Cannot read the file \"" + PathOf("caf\\xe9/\\xff\\xfe.txt") +
                "\": No such file or directory.");
}

TEST_F(NativeFileSystemServiceTest, ListsRegularFilesOnly) {
  WriteFile("file");
  WriteFile("folder/below");
  fs::create_symlink(PathOf("file"), PathOf("link"));
  ASSERT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
  EXPECT_THAT(service_->GetDirectoryFiles(folder_.Path()), ElementsAre("file"));
}

TEST_F(NativeFileSystemServiceTest, ListsNothingThatCannotBeListed) {
  for (const std::string& path : {PathOf("missing"), WriteFile("file")}) {
    EXPECT_THAT(service_->GetDirectoryContents(path), IsEmpty());
    EXPECT_THAT(service_->GetDirectoryFiles(path), IsEmpty());
  }
  host_.fileManager->Fail(FileFault::ContentsOfDirectory);
  EXPECT_THAT(service_->GetDirectoryContents(folder_.Path()), IsEmpty());
}

TEST_F(NativeFileSystemServiceTest, StartsRelativePathsAtTheCurrentDirectory) {
  const ScopedCurrentDirectory here(folder_.Path());
  EXPECT_TRUE(service_->MakeDirectory("a/b"));
  EXPECT_TRUE(fs::is_directory(PathOf("a/b")));
  EXPECT_TRUE(service_->IsDirectory("a"));
  EXPECT_TRUE(service_->IsDirectory("a/../a"));
  EXPECT_TRUE(service_->DirectoryIsWritable("a"));
  EXPECT_THAT(service_->GetDirectoryContents("a"), ElementsAre("b"));
  ExpectDebug("Deleted directory: a/b");
  EXPECT_TRUE(service_->DeleteDirectory("a/b"));
  EXPECT_FALSE(Exists(PathOf("a/b")));
  WriteFile("file");
  ExpectDebug("Deleted file successfully: file");
  EXPECT_TRUE(service_->DeleteFile("file"));
  EXPECT_FALSE(Exists(PathOf("file")));
}

TEST_F(NativeFileSystemServiceTest, TakesTheEmptyPathForTheCurrentDirectory) {
  const ScopedCurrentDirectory here(folder_.Path());
  WriteFile("file");
  EXPECT_TRUE(service_->MakeDirectory(""));
  EXPECT_TRUE(service_->IsDirectory(""));
  EXPECT_THAT(service_->GetDirectoryFiles(""), ElementsAre("file"));
  ExpectDebug("Can't delete directory  because it has files");
  EXPECT_FALSE(service_->DeleteDirectory(""));
  ExpectDebug("Can't delete  because it is a directory");
  EXPECT_FALSE(service_->DeleteFile(""));
}

TEST_F(NativeFileSystemServiceTest, ReadsARelativePathAsItStands) {
  const ScopedCurrentDirectory here(folder_.Path());
  WriteFile("file", "here");
  EXPECT_EQ(service_->ReadStringFromFile("file"), "here");
  EXPECT_EQ(MessageOf([&] { service_->ReadStringFromFile("missing"); }),
            "Cannot read the file \"missing\": No such file or directory.");
}

TEST_F(NativeFileSystemServiceTest, ReadsTextWhole) {
  const std::string text("Gr\xc3\xbc\xc3\x9f\x65\0\nmehr", 13);
  EXPECT_EQ(service_->ReadStringFromFile(WriteFile("file", text)), text);
  EXPECT_EQ(service_->ReadStringFromFile(WriteFile("empty", "")), "");
}

TEST_F(NativeFileSystemServiceTest, ReadsNothingFromAnEmptyPath) {
  host_.fileManager->Fail(FileFault::ReadText);
  ExpectDebug("Failed to read file. File path parameter is empty.");
  EXPECT_EQ(service_->ReadStringFromFile(""), "");
}

TEST_F(NativeFileSystemServiceTest, ThrowsWhyAFileCannotBeRead) {
  EXPECT_EQ(MessageOf([&] { service_->ReadStringFromFile(PathOf("missing")); }),
            "Cannot read the file \"" + PathOf("missing") + "\": No such file or directory.");
  EXPECT_EQ(MessageOf([&] { service_->ReadStringFromFile(folder_.Path()); }),
            "Cannot read the file \"" + folder_.Path().string() + "\": Is a directory.");
  EXPECT_EQ(MessageOf([&] { service_->ReadStringFromFile(WriteFile("latin1", "caf\xe9")); }),
            "Cannot read the file \"" + PathOf("latin1") + "\": It is not UTF-8 text.");
}

TEST_F(NativeFileSystemServiceTest, ReadsNothingWhenTheDeviceGivesNeitherTextNorError) {
  host_.fileManager->FailSilently(FileFault::ReadText);
  EXPECT_EQ(service_->ReadStringFromFile(WriteFile("file")), "");
}

TEST_F(NativeFileSystemServiceTest, SeparatesPathsWithASlash) {
  EXPECT_EQ(service_->GetPathSeparatorChar(), '/');
  EXPECT_EQ(service_->GetPathSeparator(), "/");
}

TEST_F(NativeFileSystemServiceTest, MakesFileHandlersWithoutTouchingTheDisk) {
  const auto handler = service_->CreateFileHandler(PathOf("folder/file"));
  ASSERT_NE(handler, nullptr);
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
  ASSERT_TRUE(service_->MakeDirectory(PathOf("folder")));
  EXPECT_TRUE(handler->OpenForWriting());
  EXPECT_TRUE(Exists(PathOf("folder/file")));
}

TEST_F(NativeFileSystemServiceTest, LogsPathsWithPercentSignsAsTheyStand) {
  const std::string file = WriteFile("%s%n%d");
  ExpectDebug("Deleted file successfully: " + file);
  EXPECT_TRUE(service_->DeleteFile(file));
}

TEST_F(NativeFileSystemServiceTest, ServesManyThreadsAtOnce) {
  log_.AllowLines(LogLevel::Debug, "NativeFileSystemService", testing::StartsWith("Deleted "));
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this, name = std::to_string(thread)] {
      for (int round = 0; round < 50; ++round) {
        EXPECT_TRUE(service_->MakeDirectory(PathOf("shared/" + name)));
        EXPECT_TRUE(service_->IsDirectory(PathOf("shared/" + name)));
        EXPECT_TRUE(service_->DeleteDirectory(PathOf("shared/" + name)));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// The operations that others build on are asked through the interface.
class OverriddenService : public Velmora::NativeFileSystemService {
 public:
  bool IsDirectory(const std::string&) const override { return true; }
  char GetPathSeparatorChar() const override { return ':'; }
  std::vector<std::string> GetDirectoryContents(const std::string&) const override {
    return {"hidden"};
  }
};

TEST_F(NativeFileSystemServiceTest, AsksItsOwnOperationsThroughTheInterface) {
  const auto service = std::make_shared<OverriddenService>();
  EXPECT_TRUE(service->DirectoryExists(PathOf("missing")));
  EXPECT_EQ(service->GetPathSeparator(), ":");
  fs::create_directory(PathOf("empty"));
  ExpectDebug("Can't delete directory " + PathOf("empty") + " because it has files");
  EXPECT_FALSE(service->DeleteDirectory(PathOf("empty")));
}

}  // namespace
