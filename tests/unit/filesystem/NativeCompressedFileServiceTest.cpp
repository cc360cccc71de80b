#include <thread>

#include "services/filesystem/NativeCompressedFileService.h"
#include "unit/filesystem/ZipFixture.h"

namespace {

using TestSupport::ArchiveOf;
using TestSupport::DeflatedEntry;
using TestSupport::StoredEntry;
using Velmora::CompressedFileType;
using Velmora::CreateNativeCompressedFileService;

namespace fs = std::filesystem;

using NativeCompressedFileServiceTest = ZipFixture;

TEST_F(NativeCompressedFileServiceTest, UnpacksEveryEntryIntoANewDirectory) {
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", "first"), DeflatedEntry("b/c", "second")})), "");
  EXPECT_EQ(Unpacked("a"), "first");
  EXPECT_EQ(Unpacked("b/c"), "second");
}

TEST_F(NativeCompressedFileServiceTest, TouchesNothingForOtherTypes) {
  const std::string path = WriteArchive(ArchiveOf({StoredEntry("a", "first")}));
  const auto service = CreateNativeCompressedFileService();
  for (const int type : {-1, 1, 100}) {
    EXPECT_FALSE(service->Extract(path, static_cast<CompressedFileType>(type), PathOf("out")));
    EXPECT_FALSE(service->Extract("missing", static_cast<CompressedFileType>(type), PathOf("out")));
  }
  EXPECT_FALSE(Exists(PathOf("out")));
}

TEST_F(NativeCompressedFileServiceTest, ThrowsForAnArchiveThatIsMissing) {
  EXPECT_EQ(ErrorOfExtracting(PathOf("missing"), PathOf("out")), kCannotOpen);
}

TEST_F(NativeCompressedFileServiceTest, MakesNothingOfAnEmptyArchive) {
  EXPECT_EQ(Extract(ArchiveOf({})), "");
  EXPECT_FALSE(Exists(PathOf("out")));
}

TEST_F(NativeCompressedFileServiceTest, UnpacksIntoARelativeDirectory) {
  const ScopedCurrentDirectory here(folder_.Path());
  WriteArchive(ArchiveOf({StoredEntry("d/a", "first")}));
  const auto service = CreateNativeCompressedFileService();
  EXPECT_TRUE(service->Extract("archive.zip", CompressedFileType::Zip, "out"));
  EXPECT_TRUE(service->Extract("archive.zip", CompressedFileType::Zip, ""));
  EXPECT_EQ(Unpacked("d/a"), "first");
  EXPECT_EQ(TestSupport::ReadFileBytes(PathOf("d/a")), "first");
}

TEST_F(NativeCompressedFileServiceTest, FollowsLinksToTheArchiveAndTheDestination) {
  WriteArchive(ArchiveOf({StoredEntry("d/a", "first")}));
  fs::create_symlink("archive.zip", PathOf("link.zip"));
  fs::create_directory(PathOf("out"));
  fs::create_directory_symlink("out", PathOf("link"));
  EXPECT_EQ(ErrorOfExtracting(PathOf("link.zip"), PathOf("link")), "");
  EXPECT_EQ(Unpacked("d/a"), "first");
}

TEST_F(NativeCompressedFileServiceTest, ReportsLoopsOfLinks) {
  const std::string path = WriteArchive(ArchiveOf({StoredEntry("a", "first")}));
  fs::create_symlink("loop", PathOf("loop"));
  EXPECT_EQ(ErrorOfExtracting(PathOf("loop"), PathOf("out")), kCannotOpen);
  EXPECT_EQ(ErrorOfExtracting(PathOf("loop/archive.zip"), PathOf("out")), kCannotOpen);
  EXPECT_EQ(ErrorOfExtracting(path, PathOf("loop")), CannotWrite("a"));
  EXPECT_EQ(ErrorOfExtracting(path, PathOf("loop/below")), CannotWrite("a"));
  EXPECT_FALSE(Exists(PathOf("out")));
}

TEST_F(NativeCompressedFileServiceTest, ReportsADestinationThatIsAFile) {
  const std::string path =
      WriteArchive(ArchiveOf({TestSupport::DirectoryEntry("d/"), StoredEntry("a", "first")}));
  EXPECT_EQ(ErrorOfExtracting(path, WriteFile("file")), CannotWrite("d/"));
  EXPECT_EQ(ErrorOfExtracting(path, path), CannotWrite("d/"));
  EXPECT_EQ(TestSupport::ReadFileBytes(PathOf("file")), "contents");
}

TEST_F(NativeCompressedFileServiceTest, UnpacksOnTwoThreadsAtOnce) {
  const std::string contents = Varied(300'000) + std::string(300'000, 'x');
  const std::string path = WriteArchive(ArchiveOf({DeflatedEntry("a", contents)}));
  const auto service = CreateNativeCompressedFileService();
  {
    const std::jthread other(
        [&] { service->Extract(path, CompressedFileType::Zip, PathOf("other")); });
    EXPECT_TRUE(service->Extract(path, CompressedFileType::Zip, PathOf("out")));
  }
  EXPECT_TRUE(Unpacked("a") == contents);
  EXPECT_TRUE(TestSupport::ReadFileBytes(PathOf("other/a")) == contents);
}

}  // namespace
