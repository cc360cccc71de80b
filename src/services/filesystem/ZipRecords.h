#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "services/filesystem/ZipReader.h"

namespace Velmora {

// The record at the end of an archive.
struct ZipEndRecord {
  static constexpr std::uint32_t kSignature = 0x06054b50;
  static constexpr std::size_t kFixedSize = 22;

  std::uint64_t offset = 0;  // of the record itself
  std::uint16_t diskNumber = 0;
  std::uint16_t directoryDisk = 0;  // where the central directory starts
  std::uint16_t entriesOnDisk = 0;
  std::uint16_t totalEntries = 0;
  std::uint32_t directorySize = 0;
  std::uint32_t directoryOffset = 0;
  std::string comment;
};

// What both headers of an entry say about it, each for itself.
struct ZipEntryHeader {
  std::uint16_t versionNeeded = 0;
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint16_t time = 0;
  std::uint16_t date = 0;
  std::uint32_t crc = 0;
  std::uint32_t compressedSize = 0;
  std::uint32_t uncompressedSize = 0;
  std::string name;
  std::string extraField;
};

// An entry as the central directory describes it.
struct ZipCentralHeader : ZipEntryHeader {
  static constexpr std::uint32_t kSignature = 0x02014b50;
  static constexpr std::size_t kFixedSize = 46;

  std::uint16_t versionMadeBy = 0;
  std::uint16_t diskNumberStart = 0;
  std::uint16_t internalAttributes = 0;
  std::uint32_t externalAttributes = 0;
  std::uint32_t localHeaderOffset = 0;
  std::string comment;

  // Bytes in the archive.
  std::uint64_t Length() const {
    return kFixedSize + name.size() + extraField.size() + comment.size();
  }
};

// An entry as the header before its data describes it.
struct ZipLocalHeader : ZipEntryHeader {
  static constexpr std::uint32_t kSignature = 0x04034b50;
  static constexpr std::size_t kFixedSize = 30;

  std::uint64_t Length() const { return kFixedSize + name.size() + extraField.size(); }
};

// What may stand behind the data of an entry that was written as a stream.
struct ZipDataDescriptor {
  static constexpr std::uint32_t kSignature = 0x08074b50;

  std::uint32_t crc = 0;
  std::uint32_t compressedSize = 0;
  std::uint32_t uncompressedSize = 0;
};

// Each reads one record of the archive, with its texts, and throws when the archive ends before the
// record does, or when another signature stands there.
namespace ZipRecords {

// Finds the last occurrence of the record's signature in the file.
ZipEndRecord ReadEndRecord(ZipReader& reader);

ZipCentralHeader ReadCentralHeader(ZipReader& reader, std::uint64_t offset);
ZipLocalHeader ReadLocalHeader(ZipReader& reader, std::uint64_t offset);

// Looks behind the data, which end at `offset`. Nothing when no signature stands there, unless a
// descriptor is `expected`, which may then have none.
std::optional<ZipDataDescriptor> ReadDataDescriptor(ZipReader& reader, std::uint64_t offset,
                                                    bool expected);

}  // namespace ZipRecords
}  // namespace Velmora
