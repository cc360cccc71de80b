#include "support/ZipBuilder.h"

#include <stdexcept>
#include <utility>

#include <zlib.h>

namespace TestSupport {
namespace {

constexpr std::uint16_t kDescriptorFollows = 0x08;

void Add16(std::string& bytes, std::size_t number) {
  bytes += static_cast<char>(number & 0xFF);
  bytes += static_cast<char>((number >> 8) & 0xFF);
}

void Add32(std::string& bytes, std::size_t number) {
  Add16(bytes, number & 0xFFFF);
  Add16(bytes, (number >> 16) & 0xFFFF);
}

// From the flags to the sizes: what both headers have in this order.
void AddCommonFields(std::string& bytes, const ZipEntry& entry, const ZipHeaderFields& fields) {
  Add16(bytes, entry.versionNeeded);
  Add16(bytes, fields.flags);
  Add16(bytes, fields.method);
  Add16(bytes, entry.time);
  Add16(bytes, entry.date);
  Add32(bytes, fields.crc);
  Add32(bytes, fields.compressedSize);
  Add32(bytes, fields.uncompressedSize);
  Add16(bytes, fields.name.size());
  Add16(bytes, fields.extraField.size());
}

void AddLocalPart(std::string& bytes, const ZipEntry& entry) {
  bytes += "PK\x03\x04";
  AddCommonFields(bytes, entry, entry.local);
  bytes += entry.local.name + entry.local.extraField + entry.data;
  if (entry.descriptor == Descriptor::None) return;
  if (entry.descriptor == Descriptor::Signed) bytes += "PK\x07\x08";
  Add32(bytes, entry.central.crc);
  Add32(bytes, entry.central.compressedSize);
  Add32(bytes, entry.central.uncompressedSize);
}

void AddCentralHeader(std::string& bytes, const ZipEntry& entry, std::size_t localHeaderOffset) {
  bytes += "PK\x01\x02";
  Add16(bytes, entry.versionMadeBy);
  AddCommonFields(bytes, entry, entry.central);
  Add16(bytes, entry.comment.size());
  Add16(bytes, entry.diskNumberStart);
  Add16(bytes, 0);
  Add32(bytes, 0);
  Add32(bytes, entry.localHeaderOffset.value_or(static_cast<std::uint32_t>(localHeaderOffset)));
  bytes += entry.central.name + entry.central.extraField + entry.comment;
}

void AddEndRecord(std::string& bytes, const ZipArchive& archive, std::size_t directoryOffset) {
  const std::size_t directorySize = bytes.size() - directoryOffset;
  const auto count = static_cast<std::uint16_t>(archive.entries.size());
  bytes += "PK\x05\x06";
  Add16(bytes, archive.diskNumber);
  Add16(bytes, archive.directoryDisk);
  Add16(bytes, archive.entriesOnDisk.value_or(count));
  Add16(bytes, archive.totalEntries.value_or(count));
  Add32(bytes, archive.directorySize.value_or(static_cast<std::uint32_t>(directorySize)));
  Add32(bytes, archive.directoryOffset.value_or(static_cast<std::uint32_t>(directoryOffset)));
  Add16(bytes, archive.commentLength.value_or(static_cast<std::uint16_t>(archive.comment.size())));
  bytes += archive.comment;
}

ZipEntry EntryOf(const std::string& name, const std::string& contents, std::uint16_t method,
                 std::string data) {
  ZipEntry entry;
  entry.data = std::move(data);
  entry.central.method = method;
  entry.central.crc = Crc32Of(contents);
  entry.central.compressedSize = static_cast<std::uint32_t>(entry.data.size());
  entry.central.uncompressedSize = static_cast<std::uint32_t>(contents.size());
  entry.central.name = name;
  entry.local = entry.central;
  return entry;
}

}  // namespace

std::uint32_t Crc32Of(std::string_view bytes) {
  return static_cast<std::uint32_t>(
      ::crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::string Deflate(std::string_view bytes, int level) {
  z_stream stream{};
  if (::deflateInit2(&stream, level, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("deflateInit2 failed");
  }
  std::string deflated(::deflateBound(&stream, bytes.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(deflated.data());
  stream.avail_out = static_cast<uInt>(deflated.size());
  const int result = ::deflate(&stream, Z_FINISH);
  deflated.resize(stream.total_out);
  ::deflateEnd(&stream);
  if (result != Z_STREAM_END) throw std::runtime_error("deflate failed");
  return deflated;
}

ZipEntry StoredEntry(const std::string& name, const std::string& contents) {
  return EntryOf(name, contents, 0, contents);
}

ZipEntry DeflatedEntry(const std::string& name, const std::string& contents, int level) {
  return EntryOf(name, contents, 8, Deflate(contents, level));
}

ZipEntry DirectoryEntry(const std::string& name) { return StoredEntry(name, ""); }

ZipEntry Streamed(ZipEntry entry, Descriptor descriptor) {
  entry.descriptor = descriptor;
  entry.central.flags |= kDescriptorFollows;
  entry.local.flags |= kDescriptorFollows;
  entry.local.crc = entry.local.compressedSize = entry.local.uncompressedSize = 0;
  return entry;
}

ZipEntry WithMethod(ZipEntry entry, unsigned method) {
  entry.central.method = entry.local.method = static_cast<std::uint16_t>(method);
  return entry;
}

ZipEntry WithFlags(ZipEntry entry, unsigned flags) {
  entry.central.flags = entry.local.flags = static_cast<std::uint16_t>(flags);
  return entry;
}

std::string BytesOf(const ZipArchive& archive) {
  std::string bytes;
  std::vector<std::size_t> offsets;
  for (const ZipEntry& entry : archive.entries) {
    offsets.push_back(bytes.size());
    if (entry.hasLocalPart) AddLocalPart(bytes, entry);
  }
  const std::size_t directoryOffset = bytes.size();
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    AddCentralHeader(bytes, archive.entries[i], offsets[i]);
  }
  AddEndRecord(bytes, archive, directoryOffset);
  return bytes;
}

std::string ArchiveOf(const std::vector<ZipEntry>& entries, const std::string& comment) {
  ZipArchive archive;
  archive.entries = entries;
  archive.comment = comment;
  return BytesOf(archive);
}

}  // namespace TestSupport
