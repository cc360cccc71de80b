// Archives that tools do not write, made by ours, and compared with what unzip makes of them.

#include <gmock/gmock.h>

#include "ArchiveFixture.h"
#include "support/ZipBuilder.h"

namespace {

using testing::AnyOf;
using testing::StartsWith;
using TestSupport::ArchiveOf;
using TestSupport::DeflatedEntry;
using TestSupport::Descriptor;
using TestSupport::DirectoryEntry;
using TestSupport::StoredEntry;
using TestSupport::Streamed;
using TestSupport::WithFlags;
using TestSupport::ZipEntry;

class OwnArchives : public ArchiveFixture {
 protected:
  void Write(const std::string& bytes) const { folder_.WriteFile("a.zip", bytes); }
};

TEST_F(OwnArchives, UnpackWithDescriptorsOfBothKinds) {
  for (const Descriptor kind : {Descriptor::Signed, Descriptor::Unsigned}) {
    Write(ArchiveOf({Streamed(StoredEntry("stored", RandomBytes(70'000)), kind),
                     Streamed(DeflatedEntry("deflated", RandomBytes(70'000)), kind),
                     Streamed(DirectoryEntry("d/"), kind),
                     Streamed(StoredEntry("empty", ""), kind)}));
    ExpectSameAsUnzip();
  }
}

TEST_F(OwnArchives, UnpackWithCommentsOfEveryLengthClass) {
  for (const std::size_t length : {1U, 105U, 106U, 107U, 128U, 65'535U}) {
    Write(ArchiveOf({StoredEntry("a", "contents")}, std::string(length, 'c')));
    ExpectSameAsUnzip();
  }
}

TEST_F(OwnArchives, UnpackWithNamesInUtf8) {
  constexpr unsigned kNamesAreUtf8 = 0x800;
  Write(ArchiveOf({WithFlags(StoredEntry("\xc3\xa9t\xc3\xa9/\xe2\x82\xac", "1"), kNamesAreUtf8)}));
  ExpectSameAsUnzip();
}

TEST_F(OwnArchives, KeepTheBytesOfNamesInOldCodePages) {
  // unzip turns such names into UTF-8; here they stay what they are.
  Write(ArchiveOf({StoredEntry("\x82t\x82", "1"), StoredEntry("plain", "2")}));
  EXPECT_EQ(Extract(), "");
  RunShell("unzip -qq -o a.zip -d theirs", folder_.Path(), 1);
  EXPECT_EQ(DifferenceOf(Ours(), {{"\x82t\x82", "1"}, {"plain", "2"}}), "");
  EXPECT_EQ(Theirs().size(), 2U);
  EXPECT_EQ(Theirs().at("plain"), "2");
}

TEST_F(OwnArchives, UnpackWithOverlappingEntries) {
  ZipEntry again = StoredEntry("a", "contents");
  again.hasLocalPart = false;
  again.localHeaderOffset = 0;
  Write(ArchiveOf({StoredEntry("a", "contents"), again}));
  EXPECT_EQ(Extract(), "");
  EXPECT_EQ(DifferenceOf(Ours(), {{"a", "contents"}}), "");
}

TEST_F(OwnArchives, UnpackInTheOrderOfTheDirectory) {
  Write(ArchiveOf({StoredEntry("a", "old"), StoredEntry("b", "b"), StoredEntry("a", "new")}));
  ExpectSameAsUnzip();
}

TEST_F(OwnArchives, WithAWrongChecksumAreRefusedAsByUnzip) {
  ZipEntry entry = DeflatedEntry("a", "contents");
  entry.central.crc = entry.local.crc = 1;
  Write(ArchiveOf({entry}));
  EXPECT_EQ(Extract(), "compressed-file.decompression-failed: CRC32 mismatch for a");
  Program unzip({"unzip", "-qq", "a.zip", "-d", "theirs"}, folder_.Path());
  EXPECT_EQ(unzip.Wait(), 2);
}

TEST_F(OwnArchives, WithAWrongSizeAreRefused) {
  ZipEntry entry = DeflatedEntry("a", "contents");
  entry.central.uncompressedSize = entry.local.uncompressedSize = 5;
  Write(ArchiveOf({entry}));
  EXPECT_EQ(Extract(),
            "compressed-file.decompression-failed: Uncompressed file size mismatch for a");
}

TEST_F(OwnArchives, CutAtAnyByteAreRefusedAndWriteNothing) {
  const std::string bytes = ArchiveOf(
      {StoredEntry("a", "first"), Streamed(DeflatedEntry("b/c", "second second"))}, "end");
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    Write(bytes.substr(0, length));
    EXPECT_THAT(Extract(), AnyOf("compressed-file.corrupted: File does not appear to be a zip file",
                                 "compressed-file.read-failed: Failed to read zip file"))
        << length;
  }
  EXPECT_EQ(Ours(), Tree());
}

TEST_F(OwnArchives, WithASignatureInTheCommentAreRefused) {
  Write(ArchiveOf({StoredEntry("a", "x")}, "PK\x05\x06" + std::string(18, '\x01')));
  EXPECT_THAT(Extract(), StartsWith("compressed-file."));
  EXPECT_EQ(Ours(), Tree());
}

TEST_F(OwnArchives, ThatAreBombsStopAtTheStatedSize) {
  ZipEntry bomb = DeflatedEntry("a", std::string(50'000'000, '\0'), 9);
  bomb.central.uncompressedSize = bomb.local.uncompressedSize = 1'000;
  Write(ArchiveOf({bomb}));
  EXPECT_EQ(Extract(),
            "compressed-file.decompression-failed: Uncompressed file size mismatch for a");
  EXPECT_LE(Ours().at("a")->size(), 1'000U + 65'536U);
}

}  // namespace
