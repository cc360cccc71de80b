// The extraction of entries, by way of the service.

#include <algorithm>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "services/filesystem/ZipFile.h"
#include "unit/filesystem/ZipFixture.h"

namespace {

namespace fs = std::filesystem;

using TestSupport::ArchiveOf;
using TestSupport::DeflatedEntry;
using TestSupport::Descriptor;
using TestSupport::DirectoryEntry;
using TestSupport::FileFault;
using TestSupport::ReadFileBytes;
using TestSupport::StoredEntry;
using TestSupport::Streamed;
using TestSupport::WithFlags;
using TestSupport::WithMethod;
using TestSupport::ZipEntry;

using ZipEntryTest = ZipFixture;

TEST_F(ZipEntryTest, CopiesAStoredEntryByteForByte) {
  for (const std::size_t size :
       {0U, 1U, 127U, 128U, 129U, 1023U, 1024U, 65'535U, 65'536U, 65'537U, 1'000'000U}) {
    const std::string contents = Varied(size);
    EXPECT_EQ(Extract(StoredEntry("a", contents)), "") << size;
    EXPECT_TRUE(Unpacked("a") == contents) << size;
  }
}

TEST_F(ZipEntryTest, InflatesADeflatedEntryOfEveryLevel) {
  const std::string text = Varied(3'000) + std::string(100'000, ' ') + Varied(200);
  for (int level = 0; level <= 9; ++level) {
    EXPECT_EQ(Extract(DeflatedEntry("a", text, level)), "") << level;
    EXPECT_TRUE(Unpacked("a") == text) << level;
  }
}

TEST_F(ZipEntryTest, InflatesEntriesOfWholePiecesOnly) {
  // At level 0 five bytes come before the contents.
  for (const std::size_t size : {128U, 256U, 1'024U}) {
    const ZipEntry entry = DeflatedEntry("a", Varied(size - 5), 0);
    ASSERT_EQ(entry.data.size(), size);
    EXPECT_EQ(Extract(entry), "");
    EXPECT_TRUE(Unpacked("a") == Varied(size - 5));
  }
}

TEST_F(ZipEntryTest, InflatesWhatDeflatesToAThousandthOfItself) {
  // Pieces of such data inflate to whole output buffers, with nothing left over.
  for (std::size_t size = 1'000'000; size < 1'002'000; size += 129) {
    const std::string contents(size, '\0');
    EXPECT_EQ(Extract(DeflatedEntry("a", contents)), "") << size;
    EXPECT_TRUE(Unpacked("a") == contents) << size;
  }
}

TEST_F(ZipEntryTest, UnpacksEmptyFiles) {
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", ""), DeflatedEntry("b", "")})), "");
  EXPECT_EQ(Unpacked("a"), "");
  EXPECT_EQ(Unpacked("b"), "");
}

TEST_F(ZipEntryTest, UnpacksStreamedEntries) {
  for (const Descriptor kind : {Descriptor::Signed, Descriptor::Unsigned}) {
    EXPECT_EQ(Extract(ArchiveOf({Streamed(StoredEntry("a", "first"), kind),
                                 Streamed(DeflatedEntry("b", "second second"), kind)})),
              "");
    EXPECT_EQ(Unpacked("a"), "first");
    EXPECT_EQ(Unpacked("b"), "second second");
  }
}

TEST_F(ZipEntryTest, TrustsTheDirectoryWhereTheLocalHeaderDiffers) {
  ZipEntry entry = StoredEntry("a", "contents");
  entry.local.crc = 1;
  entry.local.compressedSize = entry.local.uncompressedSize = 0xFFFFFFFF;
  EXPECT_EQ(Extract(entry), "");
  EXPECT_EQ(Unpacked("a"), "contents");
}

TEST_F(ZipEntryTest, MakesDirectories) {
  EXPECT_EQ(Extract(ArchiveOf({DirectoryEntry("d/"), DirectoryEntry("e/f/"), DirectoryEntry("g\\"),
                               Streamed(DirectoryEntry("h/"))})),
            "");
  for (const char* name : {"d", "e/f", "g\\", "h"}) {
    EXPECT_TRUE(fs::is_directory(PathOf(std::string("out/") + name))) << name;
  }
}

TEST_F(ZipEntryTest, MakesNoDirectoryOfAnEntryWithContents) {
  EXPECT_EQ(Extract(StoredEntry("a/", "contents")), "");
  EXPECT_EQ(Unpacked("a"), "contents");
  ZipEntry entry = DirectoryEntry("b/");
  entry.local.crc = 1;
  EXPECT_EQ(Extract(entry), "");
  EXPECT_EQ(Unpacked("b"), "");
}

TEST_F(ZipEntryTest, ReportsADirectoryThatCannotBeMade) {
  WriteFile("out/d");
  EXPECT_EQ(Extract(DirectoryEntry("d/")), CannotWrite("d/"));
  EXPECT_EQ(Unpacked("d"), "contents");
}

TEST_F(ZipEntryTest, PassesOverWhatOnlyTheMakerNeeds) {
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("__MACOSX/._a", "x"), DirectoryEntry("__MACOSX/"),
                               StoredEntry("d/.DS_Store", "x"), StoredEntry("a", "contents"),
                               WithMethod(StoredEntry("in/__MACOSX/b", "x"), 12)})),
            "");
  EXPECT_EQ(Unpacked("a"), "contents");
  const fs::directory_iterator out(PathOf("out"));
  EXPECT_EQ(std::distance(begin(out), end(out)), 1);
}

TEST_F(ZipEntryTest, UnpacksMethod9AsDeflatedData) {
  EXPECT_EQ(Extract(WithMethod(DeflatedEntry("a", "contents"), 9)), "");
  EXPECT_EQ(Unpacked("a"), "contents");
}

TEST_F(ZipEntryTest, RefusesMethodsWithoutADecoder) {
  for (const unsigned method : {1U, 6U, 7U, 10U, 12U, 14U, 98U, 0xFFFFU}) {
    EXPECT_EQ(Extract(WithMethod(StoredEntry("a", "x"), method)), kCannotDecompress) << method;
    EXPECT_EQ(Unpacked("a"), "");
  }
}

TEST_F(ZipEntryTest, FailsAtEncryptedEntriesOnlyWhenItMeetsThem) {
  ZipEntry stored = WithFlags(StoredEntry("b", "x"), 0x01);
  stored.data = Varied(13);
  stored.central.compressedSize = stored.local.compressedSize = 13;
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", "first"), stored})), WrongSize("b"));
  EXPECT_EQ(Unpacked("a"), "first");
  ZipEntry deflated = WithFlags(DeflatedEntry("c", "contents"), 0x01);
  std::fill(deflated.data.begin(), deflated.data.end(), '\xff');
  EXPECT_EQ(Extract(deflated), kCannotDecompress);
}

TEST_F(ZipEntryTest, ReportsAWrongChecksumAndLeavesTheFile) {
  for (ZipEntry entry : {StoredEntry("a", "contents"), DeflatedEntry("a", "contents")}) {
    entry.central.crc = entry.local.crc = entry.central.crc ^ 1;
    EXPECT_EQ(Extract(entry), WrongChecksum("a"));
    EXPECT_EQ(Unpacked("a"), "contents");
  }
}

TEST_F(ZipEntryTest, ReportsAWrongSizeAndLeavesTheFile) {
  for (const std::uint32_t size : {0U, 7U, 9U, 100'000U, 0xFFFFFFFFU}) {
    for (ZipEntry entry : {StoredEntry("a", "contents"), DeflatedEntry("a", "contents")}) {
      entry.central.uncompressedSize = entry.local.uncompressedSize = size;
      EXPECT_EQ(Extract(entry), WrongSize("a")) << size;
      EXPECT_EQ(Unpacked("a"), "contents");
    }
  }
}

TEST_F(ZipEntryTest, StopsSoonAfterTheStatedSize) {
  for (const std::uint32_t size : {0U, 10U, 100'000U}) {
    ZipEntry bomb = DeflatedEntry("a", std::string(30'000'000, '\0'), 9);
    bomb.central.uncompressedSize = bomb.local.uncompressedSize = size;
    EXPECT_EQ(Extract(bomb), WrongSize("a"));
    EXPECT_LE(fs::file_size(PathOf("out/a")), size + 65'536U);
  }
}

TEST_F(ZipEntryTest, ReportsDamagedData) {
  ZipEntry entry = DeflatedEntry("a", Varied(1'000) + std::string(5'000, 'x'));
  entry.data[0] = '\xff';  // a block of no known kind
  EXPECT_EQ(Extract(entry), kCannotDecompress);
  ZipEntry none = StoredEntry("a", "");
  EXPECT_EQ(Extract(WithMethod(none, 8)), kCannotDecompress);
}

TEST_F(ZipEntryTest, WritesWhatWasDecodedBeforeTheDamage) {
  const std::string contents = Varied(60'000);
  ZipEntry entry = DeflatedEntry("a", contents + Varied(40'000), 0);
  std::fill(entry.data.begin() + 65'540, entry.data.end(), '\xff');
  EXPECT_EQ(Extract(entry), kCannotDecompress);
  EXPECT_EQ(Unpacked("a").substr(0, contents.size()), contents);
}

TEST_F(ZipEntryTest, ReportsDataThatEndTooSoonOrGoOn) {
  const std::string contents = Varied(2'000);
  ZipEntry entry = DeflatedEntry("a", contents);
  entry.data.resize(1'000);
  entry.central.compressedSize = entry.local.compressedSize = 1'000;
  EXPECT_EQ(Extract(entry), WrongSize("a"));
  entry = DeflatedEntry("a", contents);
  entry.data += Varied(500);
  entry.central.compressedSize = entry.local.compressedSize += 500;
  EXPECT_EQ(Extract(entry), kCannotDecompress);
}

TEST_F(ZipEntryTest, UnpacksOverlappingEntries) {
  ZipEntry again = StoredEntry("a", "contents");
  again.hasLocalPart = false;
  again.localHeaderOffset = 0;
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", "contents"), again, again})), "");
  EXPECT_EQ(Unpacked("a"), "contents");
}

TEST_F(ZipEntryTest, ReplacesFilesThatAreThere) {
  WriteFile("out/a", "old and longer");
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", "first"), StoredEntry("a", "new")})), "");
  EXPECT_EQ(Unpacked("a"), "new");
}

TEST_F(ZipEntryTest, UsesNamesAsTheyStand) {
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("./b/../c//d", "1"), StoredEntry("../beside", "2"),
                               StoredEntry("/e", "3"), StoredEntry("\xff\xfe", "4"),
                               StoredEntry("f\\g", "5"), StoredEntry("%s%n", "6")})),
            "");
  EXPECT_EQ(Unpacked("c/d"), "1");
  EXPECT_EQ(ReadFileBytes(PathOf("beside")), "2");
  EXPECT_EQ(Unpacked("e"), "3");
  EXPECT_EQ(Unpacked("\xff\xfe"), "4");
  EXPECT_EQ(Unpacked("f\\g"), "5");
  EXPECT_EQ(Unpacked("%s%n"), "6");
}

TEST_F(ZipEntryTest, ReportsNamesUnderWhichNoFileCanBe) {
  fs::create_directories(PathOf("out/directory"));
  WriteFile("out/file");
  fs::create_directory_symlink("loop", PathOf("out/loop"));
  for (const std::string& name :
       {std::string("a\0b", 3), std::string(), std::string("directory"), std::string("file/below"),
        std::string("loop/below"), std::string(256, 'n'), std::string(4'096, 'p'),
        std::string(65'535, 'q')}) {
    EXPECT_EQ(Extract(StoredEntry(name, "x")), CannotWrite(name));
  }
  std::string deep;
  while (deep.size() < 4'096) deep += "d/";
  EXPECT_EQ(Extract(StoredEntry(deep + "f", "x")), CannotWrite(deep + "f"));
}

TEST_F(ZipEntryTest, ReportsAFileThatCannotBeOpenedForWriting) {
  for (const FileFault fault : {FileFault::CreateDirectory, FileFault::OpenForWriting}) {
    host_.fileManager->Fail(fault);
    EXPECT_EQ(Extract(StoredEntry("d/a", "x")), CannotWrite("d/a"));
    EXPECT_EQ(Exists(PathOf("out/d")), fault != FileFault::CreateDirectory);
    host_.fileManager->Heal();
  }
}

TEST_F(ZipEntryTest, ReportsAFullDiskAsAWrongSize) {
  const std::string contents = Varied(1'000'000);
  for (const std::uint64_t room : {0U, 1U, 65'536U, 999'999U}) {
    host_.fileManager->FailWritesAfter(room);
    EXPECT_EQ(Extract(StoredEntry("a", contents)), WrongSize("a")) << room;
    host_.fileManager->Heal();
    EXPECT_TRUE(Unpacked("a") == contents.substr(0, room)) << room;
  }
}

TEST_F(ZipEntryTest, ReportsADeviceThatStopsReading) {
  const std::string archive = ArchiveOf({StoredEntry("a", Varied(200'000))});
  const std::string path = WriteArchive(archive);
  Velmora::ZipFile file(path);
  const auto entry = file.Entry(0);
  host_.fileManager->FailReadsAfter(100'000);
  EXPECT_EQ(ErrorOf([&] { entry.ExtractFile(PathOf("out")); }), kCannotRead);
  EXPECT_TRUE(Unpacked("a") == Varied(200'000).substr(0, 100'000 / 128 * 128));
}

TEST_F(ZipEntryTest, KeepsEarlierEntriesWhenALaterOneFails) {
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", "first"), WithMethod(StoredEntry("b", "x"), 12),
                               StoredEntry("c", "third")})),
            kCannotDecompress);
  EXPECT_EQ(Unpacked("a"), "first");
  EXPECT_FALSE(Exists(PathOf("out/c")));
}

TEST_F(ZipEntryTest, ReportsAFileThatCannotBeClosed) {
  host_.fileManager->Fail(FileFault::Close);
  EXPECT_EQ(Extract(StoredEntry("a", "contents")),
            "compressed-file.close-failed: Failed to finalize decompression");
  EXPECT_EQ(Unpacked("a"), "contents");
}

TEST_F(ZipEntryTest, NeverWritesOverItsOwnArchive) {
  const std::string archivePath = PathOf("archive.zip");
  fs::create_directory(PathOf("out"));
  fs::create_symlink("../archive.zip", PathOf("out/link"));
  fs::create_directory_symlink("..", PathOf("out/up"));
  for (const std::string& name :
       {std::string("../archive.zip"), std::string("d/.././../archive.zip"), std::string("link"),
        std::string("up/archive.zip"), std::string("hard link")}) {
    const std::string bytes =
        ArchiveOf({StoredEntry("first", "1"), StoredEntry(name, Varied(100'000)),
                   DeflatedEntry("last", "3")});
    WriteArchive(bytes);
    fs::remove(PathOf("out/hard link"));
    fs::create_hard_link(archivePath, PathOf("out/hard link"));
    EXPECT_EQ(Extract(bytes), CannotWrite(name));
    EXPECT_EQ(ReadFileBytes(archivePath), bytes) << name;
    EXPECT_EQ(Unpacked("first"), "1");
    EXPECT_FALSE(Exists(PathOf("out/last")));
  }
}

TEST_F(ZipEntryTest, UnpacksBesideItsArchive) {
  const std::string bytes = ArchiveOf({StoredEntry("../archive.zip.txt", "beside")});
  EXPECT_EQ(Extract(bytes), "");
  EXPECT_EQ(ReadFileBytes(PathOf("archive.zip.txt")), "beside");
  EXPECT_EQ(ReadFileBytes(PathOf("archive.zip")), bytes);
}

TEST_F(ZipEntryTest, LeavesTheArchiveAloneAndNoFileOpen) {
  const std::size_t before = OpenFiles();
  ZipEntry damaged = StoredEntry("b", "second");
  damaged.central.crc = 0;
  const std::string bytes = ArchiveOf({StoredEntry("a", "first"), damaged});
  EXPECT_EQ(Extract(bytes), WrongChecksum("b"));
  EXPECT_EQ(Extract(ArchiveOf({StoredEntry("a", "first")})), "");
  EXPECT_EQ(OpenFiles(), before);
  EXPECT_EQ(Extract(bytes), WrongChecksum("b"));
  EXPECT_EQ(ReadFileBytes(PathOf("archive.zip")), bytes);
}

}  // namespace
