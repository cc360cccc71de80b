#include "services/filesystem/ZipRecords.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "services/filesystem/ZipErrors.h"

namespace Velmora::ZipRecords {
namespace {

constexpr std::size_t kSignatureSize = 4;

// The place of the last end record's signature. From the end of the file towards its start, in
// pieces that overlap by what a signature may have in the piece before.
std::uint64_t FindEndRecord(ZipReader& reader) {
  constexpr std::string_view kSignature = "PK\x05\x06";
  constexpr std::uint64_t kPiece = std::uint64_t{64} * 1024;
  std::uint64_t end = reader.Size();
  for (;;) {
    const std::uint64_t start = end - std::min(end, kPiece);
    const std::string piece = reader.ReadText(start, static_cast<std::size_t>(end - start));
    const std::size_t found = piece.rfind(kSignature);
    if (found != std::string::npos) return start + found;
    if (start == 0) throw ZipErrors::Corrupted("File does not appear to be a zip file");
    end = start + kSignatureSize - 1;
  }
}

// The lengths of the texts behind the fixed part of both headers.
struct TextLengths {
  std::size_t name = 0;
  std::size_t extraField = 0;
};

// The numbers that stand in both headers, in the same order.
TextLengths ReadSharedNumbers(ZipNumbers& numbers, ZipEntryHeader& header) {
  header.versionNeeded = numbers.Next16();
  header.flags = numbers.Next16();
  header.method = numbers.Next16();
  header.time = numbers.Next16();
  header.date = numbers.Next16();
  header.crc = numbers.Next32();
  header.compressedSize = numbers.Next32();
  header.uncompressedSize = numbers.Next32();
  TextLengths lengths;
  lengths.name = numbers.Next16();
  lengths.extraField = numbers.Next16();
  return lengths;
}

std::string TakeText(std::span<const std::uint8_t>& bytes, std::size_t count) {
  const auto taken = bytes.first(count);
  bytes = bytes.subspan(count);
  return {taken.begin(), taken.end()};
}

}  // namespace

ZipEndRecord ReadEndRecord(ZipReader& reader) {
  ZipEndRecord record;
  record.offset = FindEndRecord(reader);
  std::array<std::uint8_t, ZipEndRecord::kFixedSize> bytes{};
  reader.Read(record.offset, bytes);
  const std::span<const std::uint8_t> view(bytes);
  ZipNumbers numbers(view.subspan(kSignatureSize));
  record.diskNumber = numbers.Next16();
  record.directoryDisk = numbers.Next16();
  record.entriesOnDisk = numbers.Next16();
  record.totalEntries = numbers.Next16();
  record.directorySize = numbers.Next32();
  record.directoryOffset = numbers.Next32();
  const std::uint16_t commentLength = numbers.Next16();
  record.comment = reader.ReadText(record.offset + bytes.size(), commentLength);
  return record;
}

ZipCentralHeader ReadCentralHeader(ZipReader& reader, std::uint64_t offset) {
  ZipNumbers numbers(reader.ReadDirectory(offset, ZipCentralHeader::kFixedSize));
  if (numbers.Next32() != ZipCentralHeader::kSignature) {
    throw ZipErrors::Corrupted("Central directory header not found");
  }
  ZipCentralHeader header;
  header.versionMadeBy = numbers.Next16();
  const TextLengths lengths = ReadSharedNumbers(numbers, header);
  const std::size_t commentLength = numbers.Next16();
  header.diskNumberStart = numbers.Next16();
  header.internalAttributes = numbers.Next16();
  header.externalAttributes = numbers.Next32();
  header.localHeaderOffset = numbers.Next32();
  auto texts = reader.ReadDirectory(offset + ZipCentralHeader::kFixedSize,
                                    lengths.name + lengths.extraField + commentLength);
  header.name = TakeText(texts, lengths.name);
  header.extraField = TakeText(texts, lengths.extraField);
  header.comment = TakeText(texts, commentLength);
  return header;
}

ZipLocalHeader ReadLocalHeader(ZipReader& reader, std::uint64_t offset) {
  std::array<std::uint8_t, ZipLocalHeader::kFixedSize> bytes{};
  reader.Read(offset, bytes);
  ZipNumbers numbers(bytes);
  if (numbers.Next32() != ZipLocalHeader::kSignature) {
    throw ZipErrors::Corrupted("Local file header not found");
  }
  ZipLocalHeader header;
  const TextLengths lengths = ReadSharedNumbers(numbers, header);
  const std::uint64_t texts = offset + bytes.size();
  header.name = reader.ReadText(texts, lengths.name);
  header.extraField = reader.ReadText(texts + lengths.name, lengths.extraField);
  return header;
}

std::optional<ZipDataDescriptor> ReadDataDescriptor(ZipReader& reader, std::uint64_t offset,
                                                    bool expected) {
  // Data that reach beyond the file are missing; behind data that do not, the file may end sooner.
  constexpr std::uint64_t kLongest = 24;
  if (offset > reader.Size()) throw ZipErrors::CannotRead();
  std::array<std::uint8_t, kLongest> bytes{};
  const auto available = static_cast<std::size_t>(std::min(kLongest, reader.Size() - offset));
  const auto view = std::span<std::uint8_t>(bytes).first(available);
  reader.Read(offset, view);
  ZipNumbers numbers(view);

  if (available < kSignatureSize && !expected) return std::nullopt;
  const std::uint32_t first = numbers.Next32();
  const bool isSigned = first == ZipDataDescriptor::kSignature;
  if (!isSigned && !expected) return std::nullopt;
  ZipDataDescriptor descriptor;
  descriptor.crc = isSigned ? numbers.Next32() : first;
  descriptor.compressedSize = numbers.Next32();
  descriptor.uncompressedSize = numbers.Next32();
  return descriptor;
}

}  // namespace Velmora::ZipRecords
