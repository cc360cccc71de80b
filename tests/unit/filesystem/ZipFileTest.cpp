#include <fstream>

#include "services/filesystem/ZipFile.h"
#include "unit/filesystem/ZipFixture.h"

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::IsEmpty;
using TestSupport::ArchiveOf;
using TestSupport::BytesOf;
using TestSupport::DeflatedEntry;
using TestSupport::Descriptor;
using TestSupport::FileFault;
using TestSupport::StoredEntry;
using TestSupport::Streamed;
using TestSupport::WithFlags;
using TestSupport::WithMethod;
using TestSupport::ZipArchive;
using TestSupport::ZipEntry;
using Velmora::ZipFile;

class ZipFileTest : public ZipFixture {
 protected:
  std::string ErrorOfOpening(const std::string& bytes) const {
    const std::string path = WriteArchive(bytes);
    return ErrorOf([&] { ZipFile archive(path); });
  }

  static ZipArchive SmallArchive() {
    ZipArchive archive;
    archive.entries = {StoredEntry("a", "first"), DeflatedEntry("b/c", "second second second")};
    archive.comment = "a comment";
    return archive;
  }

  // As many entries as wanted over one local header.
  static ZipArchive ManyEntries(std::size_t count) {
    ZipEntry entry = StoredEntry("a", "x");
    ZipArchive archive;
    archive.entries.push_back(entry);
    entry.hasLocalPart = false;
    entry.localHeaderOffset = 0;
    archive.entries.resize(count, entry);
    return archive;
  }
};

TEST_F(ZipFileTest, ReadsTheDirectory) {
  ZipFile archive(WriteArchive(BytesOf(SmallArchive())));
  EXPECT_EQ(archive.EndRecord().comment, "a comment");
  EXPECT_EQ(archive.EndRecord().totalEntries, 2U);
  EXPECT_TRUE(archive.IsConforming());
  ASSERT_EQ(archive.EntryCount(), 2U);
  EXPECT_EQ(archive.Entry(0).Name(), "a");
  EXPECT_EQ(archive.Entry(0).HeaderOffset(), archive.EndRecord().directoryOffset);
  const auto second = archive.Entry(1);
  EXPECT_EQ(second.Name(), "b/c");
  EXPECT_EQ(second.UncompressedSize(), 20U);
  EXPECT_EQ(second.CompressedSize(), second.LocalHeader().compressedSize);
  EXPECT_EQ(second.DataOffset(), second.CentralHeader().localHeaderOffset + 33);
}

TEST_F(ZipFileTest, AcceptsAnArchiveOfNothing) {
  ZipFile archive(WriteArchive(ArchiveOf({})));
  EXPECT_EQ(archive.EntryCount(), 0U);
  EXPECT_TRUE(archive.IsConforming());
}

TEST_F(ZipFileTest, RefusesFilesThatCannotBeOpened) {
  fs::create_directory(PathOf("directory"));
  for (const auto& path : {PathOf("missing"), PathOf("directory"), std::string(),
                           std::string("\0", 1), std::string(5000, 'p')}) {
    EXPECT_EQ(ErrorOf([&] { ZipFile archive(path); }), kCannotOpen) << path;
  }
  host_.fileManager->Fail(FileFault::OpenForReading);
  EXPECT_EQ(ErrorOfOpening(ArchiveOf({})), kCannotOpen);
}

TEST_F(ZipFileTest, RefusesFilesThatAreNoArchives) {
  for (const std::size_t size : {0U, 1U, 3U, 21U, 22U, 127U, 128U, 129U, 65'536U, 10'000'000U}) {
    EXPECT_EQ(ErrorOfOpening(std::string(size, 'P')), kNoZipFile) << size;
  }
}

TEST_F(ZipFileTest, TakesFilesUpTo256MegabytesOnly) {
  const std::string path = PathOf("large");
  const std::string bytes = ArchiveOf({});
  std::ofstream file(path, std::ios::binary);
  file.seekp(268'435'456 - static_cast<std::streamoff>(bytes.size()));
  file << bytes;
  file.close();
  EXPECT_EQ(ErrorOf([&] { ZipFile archive(path); }), "");
  fs::resize_file(path, 268'435'457);
  EXPECT_EQ(ErrorOf([&] { ZipFile archive(path); }), kCannotOpen);
}

TEST_F(ZipFileTest, FindsTheEndRecordBeforeACommentOfAnyLength) {
  for (std::size_t length = 0; length < 300; ++length) {
    const std::string comment(length, 'c');
    ZipFile archive(WriteArchive(ArchiveOf({StoredEntry("a", "x")}, comment)));
    EXPECT_EQ(archive.EndRecord().comment, comment);
  }
  for (const std::size_t length : {65'513U, 65'514U, 65'515U, 65'516U, 65'517U, 65'535U}) {
    ZipFile archive(WriteArchive(ArchiveOf({StoredEntry("a", "x")}, std::string(length, 'P'))));
    EXPECT_EQ(archive.EndRecord().comment.size(), length);
    EXPECT_EQ(archive.EntryCount(), 1U);
  }
}

TEST_F(ZipFileTest, FindsTheEndRecordHoweverFarItIsFromTheEnd) {
  const std::string archive = ArchiveOf({StoredEntry("a", "x")});
  for (const std::size_t length : {131'066U, 131'072U, 1'000'000U}) {
    EXPECT_EQ(ErrorOfOpening(archive + std::string(length, '\0')), "") << length;
  }
}

TEST_F(ZipFileTest, TakesTheSignatureThatIsNearestTheEnd) {
  // What follows the signature in the comment is then the record.
  EXPECT_EQ(ErrorOfOpening(ArchiveOf({StoredEntry("a", "x")}, "see PK\x05\x06")), kCannotRead);
  const std::string inner = ArchiveOf({});
  ZipFile archive(WriteArchive(ArchiveOf({StoredEntry("a", "x")}, inner)));
  EXPECT_EQ(archive.EntryCount(), 0U);
}

TEST_F(ZipFileTest, RefusesEveryBeginningOfAnArchive) {
  const std::string bytes = BytesOf(SmallArchive());
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_THAT(ErrorOfOpening(bytes.substr(0, length)), AnyOf(kNoZipFile, kCannotRead)) << length;
  }
  EXPECT_EQ(ErrorOfOpening(bytes), "");
}

TEST_F(ZipFileTest, SurvivesAnyOneByteBeingAnother) {
  const std::string bytes = BytesOf(SmallArchive());
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (const char other : {'\0', '\x01', '\x7f', '\xff'}) {
      std::string changed = bytes;
      changed[at] = other;
      EXPECT_THAT(ErrorOfOpening(changed),
                  AnyOf("", kCannotRead, testing::StartsWith("compressed-file.corrupted: ")));
    }
  }
}

TEST_F(ZipFileTest, TakesUpToTenThousandEntries) {
  ZipFile archive(WriteArchive(BytesOf(ManyEntries(10'000))));
  EXPECT_EQ(archive.EntryCount(), 10'000U);
  EXPECT_EQ(ErrorOfOpening(BytesOf(ManyEntries(10'001))),
            "compressed-file.corrupted: Zip file has more than 10000 entries");
}

TEST_F(ZipFileTest, RefusesArchivesOfSeveralDisks) {
  constexpr const char* kRefused =
      "compressed-file.corrupted: Multi-disk zip files are not supported";
  ZipArchive archive = SmallArchive();
  archive.diskNumber = 1;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
  archive = SmallArchive();
  archive.directoryDisk = 1;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
  archive = SmallArchive();
  archive.entriesOnDisk = 1;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
  archive = SmallArchive();
  archive.totalEntries = 3;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
}

TEST_F(ZipFileTest, RefusesArchivesThatNeedZip64) {
  constexpr const char* kRefused = "compressed-file.corrupted: ZIP64 files are not supported";
  ZipArchive archive = SmallArchive();
  archive.entriesOnDisk = archive.totalEntries = 0xFFFF;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
  archive = SmallArchive();
  archive.directorySize = 0xFFFFFFFF;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
  archive = SmallArchive();
  archive.directoryOffset = 0xFFFFFFFF;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kRefused);
}

TEST_F(ZipFileTest, RefusesADirectoryThatIsNotWhereItShouldBe) {
  ZipArchive archive = SmallArchive();
  archive.directoryOffset = 0;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)),
            "compressed-file.corrupted: Central directory header not found");
  archive.directoryOffset = 0xFFFFFFFE;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kCannotRead);
  archive = SmallArchive();
  archive.entriesOnDisk = archive.totalEntries = 3;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kCannotRead);
  archive.comment = std::string(100, 'c');
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)),
            "compressed-file.corrupted: Central directory header not found");
}

TEST_F(ZipFileTest, RefusesALocalHeaderThatIsNotWhereItShouldBe) {
  ZipArchive archive = SmallArchive();
  archive.entries[1].localHeaderOffset = 1;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)),
            "compressed-file.corrupted: Local file header not found");
  for (const std::uint32_t offset : {100'000U, 0xFFFFFFFFU}) {
    archive.entries[1].localHeaderOffset = offset;
    EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kCannotRead);
  }
}

TEST_F(ZipFileTest, RefusesDataThatReachBeyondTheFile) {
  ZipArchive archive = SmallArchive();
  for (const std::uint32_t size : {100'000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
    archive.entries[0].central.compressedSize = size;
    EXPECT_EQ(ErrorOfOpening(BytesOf(archive)), kCannotRead) << size;
  }
}

TEST_F(ZipFileTest, RefusesHeadersThatDoNotAgree) {
  ZipArchive archive = SmallArchive();
  archive.entries[1].local.name = "b/d";
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)),
            "compressed-file.corrupted: File header mismatch: FILE NAME");
  archive = SmallArchive();
  archive.entries[1].local.method = 0;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)),
            "compressed-file.corrupted: File header mismatch: COMPRESSION METHOD");
  archive = SmallArchive();
  archive.entries[1].local.flags = 0x800;
  EXPECT_EQ(ErrorOfOpening(BytesOf(archive)),
            "compressed-file.corrupted: File header mismatch: FLAGS");
}

TEST_F(ZipFileTest, KeepsEntriesThatItCannotUnpack) {
  for (const unsigned flags : {0x01U, 0x10U, 0x20U, 0x31U}) {
    ZipFile archive(WriteArchive(ArchiveOf({WithFlags(StoredEntry("a", "x"), flags)})));
    EXPECT_FALSE(archive.IsConforming()) << flags;
    ASSERT_EQ(archive.EntryCount(), 1U);
    EXPECT_FALSE(archive.Entry(0).IsConforming());
  }
  for (const unsigned flags : {0x02U, 0x04U, 0x40U, 0x800U, 0xFFCEU}) {
    ZipFile archive(WriteArchive(ArchiveOf({WithFlags(StoredEntry("a", "x"), flags)})));
    EXPECT_TRUE(archive.IsConforming()) << flags;
  }
  for (const unsigned method : {0U, 8U, 9U, 1U, 7U, 10U, 12U, 14U, 0xFFFFU}) {
    ZipFile archive(WriteArchive(ArchiveOf({WithMethod(StoredEntry("a", "x"), method)})));
    EXPECT_EQ(archive.IsConforming(), method == 0 || method == 8 || method == 9) << method;
  }
}

TEST_F(ZipFileTest, OneEntryThatDoesNotConformIsEnough) {
  ZipArchive archive = SmallArchive();
  archive.entries[0].diskNumberStart = 1;
  EXPECT_FALSE(ZipFile(WriteArchive(BytesOf(archive))).IsConforming());
  archive = SmallArchive();
  archive.entries[1].central.uncompressedSize = 0xFFFFFFFF;
  EXPECT_FALSE(ZipFile(WriteArchive(BytesOf(archive))).IsConforming());
}

TEST_F(ZipFileTest, ReadsDescriptorsWithAndWithoutSignature) {
  const ZipEntry entry = DeflatedEntry("a", "contents");
  for (const Descriptor kind : {Descriptor::Signed, Descriptor::Unsigned}) {
    ZipFile archive(WriteArchive(ArchiveOf({Streamed(entry, kind), entry})));
    const auto descriptor = archive.Entry(0).DataDescriptor();
    ASSERT_TRUE(descriptor.has_value());
    EXPECT_EQ(descriptor->crc, entry.central.crc);
    EXPECT_EQ(descriptor->compressedSize, entry.central.compressedSize);
    EXPECT_EQ(descriptor->uncompressedSize, 8U);
    EXPECT_FALSE(archive.Entry(1).DataDescriptor().has_value());
  }
}

TEST_F(ZipFileTest, ReadsASignedDescriptorThatNoFlagAnnounces) {
  ZipEntry entry = StoredEntry("a", "contents");
  entry.descriptor = Descriptor::Signed;
  ZipFile archive(WriteArchive(ArchiveOf({entry})));
  ASSERT_TRUE(archive.Entry(0).DataDescriptor().has_value());
  EXPECT_EQ(archive.Entry(0).DataDescriptor()->crc, entry.central.crc);
}

TEST_F(ZipFileTest, DescribesEntriesInWords) {
  ZipEntry entry = StoredEntry("a", "x");
  entry.central.extraField = "extra";
  entry.local.extraField = "other extra";
  entry.comment = "about a";
  ZipFile archive(WriteArchive(ArchiveOf({entry, WithMethod(entry, 14), WithMethod(entry, 99)})));
  const auto first = archive.Entry(0);
  EXPECT_EQ(first.CentralHeader().extraField, "extra");
  EXPECT_EQ(first.CentralHeader().comment, "about a");
  EXPECT_EQ(first.LocalHeader().extraField, "other extra");
  EXPECT_EQ(first.LastModified(), "2024-05-31 17:20:58");
  EXPECT_EQ(first.Creator(), "UNIX");
  EXPECT_EQ(first.ZipVersionRequired(), 20U);
  EXPECT_EQ(first.CompressionMethod(), "no compression");
  EXPECT_EQ(archive.Entry(1).CompressionMethod(), "LZMA");
  EXPECT_EQ(archive.Entry(2).CompressionMethod(), "Unknown");
}

TEST_F(ZipFileTest, KnowsUnknownMakers) {
  ZipEntry entry = StoredEntry("a", "x");
  entry.versionMadeBy = 0xFF00;
  ZipFile archive(WriteArchive(ArchiveOf({entry})));
  EXPECT_EQ(archive.Entry(0).Creator(), "Unknown");
}

TEST_F(ZipFileTest, ReportsADeviceThatCannotRead) {
  for (const FileFault fault : {FileFault::Read, FileFault::Seek}) {
    host_.fileManager->Fail(fault);
    EXPECT_EQ(ErrorOfOpening(BytesOf(SmallArchive())), kCannotRead);
    host_.fileManager->Heal();
  }
}

TEST_F(ZipFileTest, ReportsAnArchiveThatShrinksUnderIt) {
  ZipArchive large = SmallArchive();
  large.entries[1] = StoredEntry("b", Varied(1'000'000));
  const std::string largePath = WriteArchive(BytesOf(large));
  ZipFile largeArchive(largePath);
  fs::resize_file(largePath, 500'000);
  EXPECT_EQ(ErrorOf([&] { largeArchive.Entry(1).ExtractFile(PathOf("out")); }), kCannotRead);
}

TEST_F(ZipFileTest, ErrorsTellWhereTheyComeFrom) {
  try {
    ZipFile archive(PathOf("missing"));
    FAIL();
  } catch (const Velmora::SdkError& error) {
    EXPECT_EQ(error.GetCode(), "compressed-file.read-failed");
    EXPECT_EQ(error.GetMessage(), "Failed to open zip file");
    EXPECT_EQ(error.GetDebugInfo().GetSourceLocation(), "src/services/filesystem/ZipFile");
    EXPECT_GT(error.GetDebugInfo().GetLine(), 0);
  }
}

TEST_F(ZipFileTest, LeavesNoFileOpenBehind) {
  const std::size_t before = OpenFiles();
  EXPECT_NE(ErrorOfOpening("no archive"), "");
  EXPECT_EQ(ErrorOfOpening(BytesOf(SmallArchive())), "");
  EXPECT_EQ(OpenFiles(), before);
}

}  // namespace
