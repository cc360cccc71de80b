// Archives that tools do not write, made by ours, and compared with what unzip makes of them.

#include <gmock/gmock.h>

#include "ArchiveFixture.h"
#include "support/ZipBuilder.h"

namespace {

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
  static constexpr const char* kNoZipFile =
      "compressed-file.corrupted: File does not appear to be a zip file";
  static constexpr const char* kCannotRead = "compressed-file.read-failed: Failed to read zip file";

  // What unzip's exit statuses mean.
  static constexpr int kUnzipWarns = 1;
  static constexpr int kUnzipSeesAnError = 2;
  static constexpr int kUnzipSeesABomb = 12;

  void Write(const std::string& bytes) const { folder_.WriteFile("a.zip", bytes); }

  // Unpacks into "theirs"; gives the exit status.
  int Unzip() const {
    return Program({"unzip", "-qq", "-o", "a.zip", "-d", "theirs"}, folder_.Path()).Wait();
  }
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

TEST_F(OwnArchives, UnpackWithNamesInOldCodePages) {
  Write(ArchiveOf({StoredEntry("\x82t\x82/\xe1", RandomBytes(1'000)), StoredEntry("\x84", "2"),
                   DirectoryEntry("\x99/")}));
  ExpectSameAsUnzip();
}

TEST_F(OwnArchives, KeepTheBytesOfNamesWhereUnzipTranslatesThem) {
  // unzip takes names from DOS for code page 437 and makes Latin-1 of them.
  constexpr std::uint16_t kMadeByDos = 0x0014;
  const std::vector<std::pair<std::string, std::string>> names = {
      {"\x82t\x82/\xe1", "\xe9t\xe9/\xdf"}, {"\x84", "\xe4"}, {"plain", "plain"}};
  std::vector<ZipEntry> entries;
  for (const auto& [name, translated] : names) {
    entries.push_back(DeflatedEntry(name, RandomBytes(1'000) + name));
    entries.back().versionMadeBy = kMadeByDos;
  }
  Write(ArchiveOf(entries));
  EXPECT_EQ(Extract(), "");
  RunShell("unzip -qq -o a.zip -d theirs", folder_.Path());
  const Tree ours = Ours();
  const Tree theirs = Theirs();
  EXPECT_EQ(ours.size(), theirs.size());
  for (const auto& [name, translated] : names) {
    EXPECT_TRUE(ours.at(name) == RandomBytes(1'000) + name) << name;
    EXPECT_TRUE(ours.at(name) == theirs.at(translated)) << name;
  }
}

TEST_F(OwnArchives, UnpackWithEntriesOfOnePlace) {
  ZipEntry again = StoredEntry("a", "contents");
  again.hasLocalPart = false;
  again.localHeaderOffset = 0;
  Write(ArchiveOf({StoredEntry("a", "contents"), again}));
  EXPECT_EQ(Extract(), "");
  // unzip calls the second one a bomb, with the first one unpacked.
  EXPECT_EQ(Unzip(), kUnzipSeesABomb);
  EXPECT_EQ(DifferenceOf(Ours(), Theirs()), "");
  EXPECT_EQ(DifferenceOf(Ours(), {{"a", "contents"}}), "");
}

TEST_F(OwnArchives, UnpackWithEntriesInsideOthers) {
  const std::string before(100, 'b');
  const std::string inner = ArchiveOf({StoredEntry("inner", "shared")});
  const ZipEntry outer = StoredEntry("outer", before + inner);
  ZipEntry shared = StoredEntry("inner", "shared");
  shared.hasLocalPart = false;
  shared.localHeaderOffset = static_cast<std::uint32_t>(30 + 5 + before.size());
  Write(ArchiveOf({outer, shared}));
  EXPECT_EQ(Extract(), "");
  // Here unzip stops, and bsdtar does not.
  EXPECT_EQ(Unzip(), kUnzipSeesABomb);
  RunShell("bsdtar -xf a.zip -C theirs", folder_.Path());
  EXPECT_EQ(DifferenceOf(Ours(), Theirs()), "");
  EXPECT_EQ(DifferenceOf(Ours(), {{"outer", before + inner}, {"inner", "shared"}}), "");
}

TEST_F(OwnArchives, UnpackInTheOrderOfTheDirectory) {
  Write(ArchiveOf({StoredEntry("a", "old"), StoredEntry("b", "b"), StoredEntry("a", "new")}));
  ExpectSameAsUnzip();
}

TEST_F(OwnArchives, WithAWrongChecksumAreRefusedAsByUnzipAndLeaveTheSameFiles) {
  ZipEntry entry = DeflatedEntry("a", "contents");
  entry.central.crc = entry.local.crc = 1;
  Write(ArchiveOf({entry}));
  EXPECT_EQ(Extract(), "compressed-file.decompression-failed: CRC32 mismatch for a");
  EXPECT_EQ(Unzip(), kUnzipSeesAnError);
  EXPECT_EQ(DifferenceOf(Ours(), Theirs()), "");
}

TEST_F(OwnArchives, WithAWrongSizeAreRefusedAndLeaveTheFilesThatUnzipLeaves) {
  const std::string contents = RandomBytes(70'000);
  for (const std::uint32_t size : {0U, 69'999U, 70'001U, 1'000'000U}) {
    for (ZipEntry entry : {StoredEntry("a", contents), DeflatedEntry("a", contents)}) {
      entry.central.uncompressedSize = entry.local.uncompressedSize = size;
      Write(ArchiveOf({StoredEntry("b", "first"), entry}));
      EXPECT_EQ(Extract(),
                "compressed-file.decompression-failed: Uncompressed file size mismatch for a");
      EXPECT_LE(Unzip(), kUnzipWarns);
      if (size == 0) continue;  // what is too much by more than a piece is not written
      EXPECT_EQ(DifferenceOf(Ours(), Theirs()), "") << size;
      EXPECT_TRUE(Ours().at("a") == contents) << size;
    }
  }
}

TEST_F(OwnArchives, CutAtAnyByteAreRefusedAndWriteNothing) {
  const std::string bytes = ArchiveOf(
      {StoredEntry("a", "first"), Streamed(DeflatedEntry("b/c", "second second"))}, "end");
  const std::size_t signatureEnd = bytes.rfind("PK\x05\x06") + 4;
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    Write(bytes.substr(0, length));
    EXPECT_EQ(Extract(), length < signatureEnd ? kNoZipFile : kCannotRead) << length;
  }
  EXPECT_EQ(Ours(), Tree());
}

TEST_F(OwnArchives, WithASignatureInTheCommentEndThere) {
  const std::string signature = "PK\x05\x06";
  const std::string zeros(17, '\0');
  const std::vector<std::pair<std::string, std::string>> comments = {
      {signature, kCannotRead},
      {"comment " + signature + zeros, kCannotRead},
      // As a record it asks for a comment of 257 bytes.
      {signature + std::string(18, '\x01'), kCannotRead},
      {signature + "\x01" + zeros,
       "compressed-file.corrupted: Multi-disk zip files are not supported"},
      // As a record it is that of an archive of nothing.
      {signature + zeros + std::string(1, '\0'), ""}};
  for (const auto& [comment, result] : comments) {
    Write(ArchiveOf({StoredEntry("a", "x")}, comment));
    EXPECT_EQ(Extract(), result) << testing::PrintToString(comment);
    EXPECT_EQ(Ours(), Tree());
  }
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
