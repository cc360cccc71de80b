#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Makes zip archives byte by byte, also such as no tool would write.
namespace TestSupport {

enum class Descriptor { None, Signed, Unsigned };

// What one of an entry's two headers says.
struct ZipHeaderFields {
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint32_t crc = 0;
  std::uint32_t compressedSize = 0;
  std::uint32_t uncompressedSize = 0;
  std::string name;
  std::string extraField;
};

struct ZipEntry {
  std::string data;  // as it stands in the archive
  ZipHeaderFields central;
  ZipHeaderFields local;
  std::string comment;
  std::uint16_t versionMadeBy = 0x0314;
  std::uint16_t versionNeeded = 20;
  std::uint16_t time = 0x8A9D;  // 17:20:58
  std::uint16_t date = 0x58BF;  // 2024-05-31
  std::uint16_t diskNumberStart = 0;
  Descriptor descriptor = Descriptor::None;
  std::optional<std::uint32_t> localHeaderOffset;  // where no header may be
  bool hasLocalPart = true;                        // else nothing is written before the directory
};

struct ZipArchive {
  std::vector<ZipEntry> entries;
  std::string comment;
  std::uint16_t diskNumber = 0;
  std::uint16_t directoryDisk = 0;
  // The truth, unless they are set.
  std::optional<std::uint16_t> entriesOnDisk;
  std::optional<std::uint16_t> totalEntries;
  std::optional<std::uint32_t> directorySize;
  std::optional<std::uint32_t> directoryOffset;
  std::optional<std::uint16_t> commentLength;
};

std::uint32_t Crc32Of(std::string_view bytes);

// Raw deflate data. Level 0 to 9.
std::string Deflate(std::string_view bytes, int level = 6);

// Entries whose headers are right.
ZipEntry StoredEntry(const std::string& name, const std::string& contents);
ZipEntry DeflatedEntry(const std::string& name, const std::string& contents, int level = 6);
ZipEntry DirectoryEntry(const std::string& name);

// The entry as tools write it to a pipe: no sizes and no checksum before the data, a descriptor
// behind them.
ZipEntry Streamed(ZipEntry entry, Descriptor descriptor = Descriptor::Signed);

// The same name, method or flags in both headers.
ZipEntry WithMethod(ZipEntry entry, unsigned method);
ZipEntry WithFlags(ZipEntry entry, unsigned flags);

std::string BytesOf(const ZipArchive& archive);
std::string ArchiveOf(const std::vector<ZipEntry>& entries, const std::string& comment = "");

}  // namespace TestSupport
