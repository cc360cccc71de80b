#include "fuzz/ZipFuzzing.h"
#include "support/ZipBuilder.h"

namespace ZipFuzzing {

using namespace TestSupport;

std::vector<std::pair<std::string, std::string>> Seeds() {
  const ZipEntry stored = StoredEntry("a", "contents");
  const ZipEntry deflated = DeflatedEntry("b/c", "contents contents contents contents");
  ZipEntry bomb = DeflatedEntry("bomb", std::string(200'000, '\0'), 9);
  bomb.central.uncompressedSize = bomb.local.uncompressedSize = 10;
  ZipEntry wrongChecksum = stored;
  wrongChecksum.central.crc = 1;
  ZipEntry again = stored;
  again.hasLocalPart = false;
  again.localHeaderOffset = 0;
  ZipEntry withFields = deflated;
  withFields.central.extraField = withFields.local.extraField =
      std::string("\x01\x00\x04\x00zip6", 8);
  withFields.comment = "about the entry";
  ZipArchive twoDisks;
  twoDisks.diskNumber = 1;
  twoDisks.entries = {stored};

  return {
      {"nothing", ArchiveOf({})},
      {"stored", ArchiveOf({stored})},
      {"deflated", ArchiveOf({deflated})},
      {"pieces", ArchiveOf({DeflatedEntry("a", std::string(300, 'x'), 0)})},
      {"directories", ArchiveOf({DirectoryEntry("d/"), DirectoryEntry("d\\"), stored})},
      {"signed_descriptor", ArchiveOf({Streamed(deflated), stored})},
      {"unsigned_descriptor", ArchiveOf({Streamed(stored, Descriptor::Unsigned), deflated})},
      {"comment", ArchiveOf({stored}, "a comment with PK\x05\x06 in it")},
      {"fields", ArchiveOf({withFields})},
      {"overlapping", ArchiveOf({stored, again, again})},
      {"passed_over", ArchiveOf({StoredEntry("__MACOSX/a", "x"), StoredEntry(".DS_Store", "x")})},
      {"outside", ArchiveOf({StoredEntry("d/../../b", "x"), StoredEntry("/c", "x")})},
      {"bomb", ArchiveOf({bomb})},
      {"wrong_checksum", ArchiveOf({wrongChecksum})},
      {"encrypted", ArchiveOf({WithFlags(deflated, 0x01)})},
      {"bzip2", ArchiveOf({WithMethod(stored, 12)})},
      {"two_disks", BytesOf(twoDisks)},
  };
}

}  // namespace ZipFuzzing
