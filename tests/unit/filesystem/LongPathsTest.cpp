// Paths at the limit of the system, which takes up to 4,095 bytes, by way of everything that takes
// paths.

#include "VelmoraCore/DirectoryHandlerInterface.h"
#include "services/filesystem/FileHandlerImpl.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "unit/filesystem/ZipFixture.h"

namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;
using TestSupport::ArchiveOf;
using TestSupport::LogLevel;
using TestSupport::StoredEntry;
using Velmora::CreateNativeFileHandler;
using Velmora::DirectoryHandlerInterface;

class LongPaths : public ZipFixture {
 protected:
  static constexpr std::size_t kLongestPath = 4'095;
  static constexpr const char* kTag = "NativeFileSystemService";

  // A path below the directory that is exactly so many bytes long.
  std::string PathOfLength(std::size_t length) const {
    std::string path = folder_.Path();
    for (constexpr std::size_t kName = 200; path.size() + kName + 2 < length;) {
      path += "/" + std::string(kName, 'd');
    }
    return path + "/" + std::string(length - path.size() - 1, 'd');
  }

  void ExpectDebug(const std::string& message) { log_.ExpectLine(LogLevel::Debug, kTag, message); }

  template <class Operation>
  static std::string FileSystemErrorOf(Operation&& operation) {
    const std::string error = ErrorOf(std::forward<Operation>(operation));
    const std::string code = "filesystem: ";
    EXPECT_TRUE(error.starts_with(code)) << error;
    return error.substr(std::min(error.size(), code.size()));
  }

  const std::shared_ptr<Velmora::FileSystemServiceInterface> service_ =
      Velmora::CreateNativeFileSystemService();
};

TEST_F(LongPaths, UpToTheLimitServeAsDirectoriesAndFiles) {
  const std::string longest = PathOfLength(kLongestPath);
  EXPECT_TRUE(service_->MakeDirectory(longest));
  EXPECT_TRUE(service_->IsDirectory(longest));
  EXPECT_TRUE(service_->DirectoryIsWritable(longest));
  EXPECT_THAT(service_->GetDirectoryContents(longest), IsEmpty());
  ExpectDebug("Deleted directory: " + longest);
  EXPECT_TRUE(service_->DeleteDirectory(longest));
  folder_.WriteFile(longest, "text");
  EXPECT_EQ(service_->ReadStringFromFile(longest), "text");
  ExpectDebug("Deleted file successfully: " + longest);
  EXPECT_TRUE(service_->DeleteFile(longest));
}

TEST_F(LongPaths, BeyondTheLimitAreRefused) {
  const std::string tooLong = PathOfLength(kLongestPath + 1);
  EXPECT_EQ(FileSystemErrorOf([&] { service_->MakeDirectory(tooLong); }),
            "Cannot create the directory \"" + tooLong + "\": File name too long.");
  EXPECT_EQ(FileSystemErrorOf([&] { service_->ReadStringFromFile(tooLong); }),
            "Cannot read the file \"" + tooLong + "\": File name too long.");
  EXPECT_FALSE(service_->IsDirectory(tooLong));
  EXPECT_FALSE(service_->DirectoryIsWritable(tooLong));
  EXPECT_THAT(service_->GetDirectoryContents(tooLong), IsEmpty());
  EXPECT_TRUE(service_->DeleteDirectory(tooLong));
  EXPECT_TRUE(service_->DeleteFile(tooLong));
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(LongPaths, OfMoreThanAThousandLevelsAreMadeAndDeleted) {
  constexpr int kLevels = 1'100;
  std::string path = folder_.Path();
  for (int level = 0; level < kLevels; ++level) path += "/d";
  EXPECT_TRUE(service_->MakeDirectory(path));
  EXPECT_TRUE(service_->IsDirectory(path));
  log_.AllowLines(LogLevel::Debug, kTag, testing::StartsWith("Deleted directory: "));
  for (int level = kLevels; level > 0; --level) {
    EXPECT_TRUE(service_->DeleteDirectory(path));
    path.resize(path.size() - 2);
  }
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(LongPaths, UpToTheLimitServeFileHandlers) {
  const std::string longest = PathOfLength(kLongestPath);
  std::filesystem::create_directories(std::filesystem::path(longest).parent_path());
  const auto handler = CreateNativeFileHandler(longest);
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(Write(*handler, "abc"), 3U);
  EXPECT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Read(*handler, 3), "abc");
  EXPECT_EQ(handler->Size(), 3);

  const auto tooLong = CreateNativeFileHandler(longest + "d");
  EXPECT_FALSE(tooLong->OpenForWriting());
  EXPECT_FALSE(tooLong->OpenForReading());
  EXPECT_EQ(tooLong->Size(), 0);
  EXPECT_EQ(tooLong->LastModified().time_since_epoch().count(), 0);
}

TEST_F(LongPaths, UpToTheLimitServeDirectoryHandlers) {
  const std::string longest = PathOfLength(kLongestPath);
  const std::string name = longest.substr(folder_.Path().string().size() + 1);
  const auto directory = DirectoryHandlerInterface::CreateFromPath(folder_.Path());
  const auto file = directory->CreateFileHandlerInDirectory(name);
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(file->OpenForWriting());
  std::filesystem::remove(longest);
  EXPECT_TRUE(directory->MoveToSubDirectory(name, true));
  EXPECT_EQ(directory->GetPath(), longest);
  EXPECT_TRUE(Exists(longest));
}

TEST_F(LongPaths, BeyondTheLimitStopDirectoryHandlers) {
  const std::string tooLong = PathOfLength(kLongestPath + 1);
  const std::string name = tooLong.substr(folder_.Path().string().size() + 1);
  const auto directory = DirectoryHandlerInterface::CreateFromPath(folder_.Path());
  EXPECT_FALSE(directory->MoveToSubDirectory(name, true));
  EXPECT_EQ(directory->GetPath(), folder_.Path().string());
  EXPECT_EQ(directory->CreateFileHandlerInDirectory(name + "/file"), nullptr);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
  const auto file = directory->CreateFileHandlerInDirectory(name);
  ASSERT_NE(file, nullptr);
  EXPECT_FALSE(file->OpenForWriting());
}

TEST_F(LongPaths, UpToTheLimitServeArchivesAndTheirDestinations) {
  const std::string bytes = ArchiveOf({StoredEntry("a", "first")});
  const std::string longest = PathOfLength(kLongestPath);
  folder_.WriteFile(longest, bytes);
  EXPECT_EQ(ErrorOfExtracting(longest, PathOf("out")), "");
  EXPECT_EQ(Unpacked("a"), "first");
  EXPECT_EQ(ErrorOfExtracting(longest + "d", PathOf("out")), kCannotOpen);

  // Of the destination's path two bytes more are needed for the file in it.
  const std::string path = WriteArchive(bytes);
  const std::string destination = PathOfLength(kLongestPath - 2);
  EXPECT_EQ(ErrorOfExtracting(path, destination), "");
  EXPECT_EQ(TestSupport::ReadFileBytes(destination + "/a"), "first");
  EXPECT_EQ(ErrorOfExtracting(path, destination + "d"), CannotWrite("a"));
}

}  // namespace
