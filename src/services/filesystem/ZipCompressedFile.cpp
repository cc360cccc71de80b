#include "services/filesystem/ZipCompressedFile.h"

#include <array>

#include "services/filesystem/FileHandlerImpl.h"
#include "services/filesystem/ZipDescriptions.h"
#include "services/filesystem/ZipErrors.h"

namespace Velmora {
namespace {

constexpr std::uint16_t kDescriptorFollows = 0x08;
// Encrypted, enhanced deflating, patched data.
constexpr std::uint16_t kUnsupportedFlags = 0x31;

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kDeflated64 = 9;

constexpr std::uint32_t kZip64Marker = 0xFFFFFFFF;

bool IsEmpty(const ZipEntryHeader& header) {
  return header.compressedSize == 0 && header.uncompressedSize == 0 && header.crc == 0;
}

bool NeedsZip64(const ZipCentralHeader& header) {
  return header.compressedSize == kZip64Marker || header.uncompressedSize == kZip64Marker ||
         header.localHeaderOffset == kZip64Marker;
}

}  // namespace

ZipCompressedFile::ZipCompressedFile(ZipReader& reader, std::uint64_t headerOffset)
    : archivePath_(reader.Path()),
      archive_(reader.File()),
      headerOffset_(headerOffset),
      central_(ZipRecords::ReadCentralHeader(reader, headerOffset)),
      local_(ZipRecords::ReadLocalHeader(reader, central_.localHeaderOffset)),
      dataOffset_(central_.localHeaderOffset + local_.Length()),
      descriptor_(ZipRecords::ReadDataDescriptor(reader, dataOffset_ + central_.compressedSize,
                                                 (central_.flags & kDescriptorFollows) != 0)) {
  CompareHeaders();
}

void ZipCompressedFile::ExtractFile(const std::string& destination) const {
  const auto directory = DirectoryHandlerInterface::CreateFromPath(destination);
  if (IsOSRestrictedPath()) return;
  if (IsDirectory()) {
    if (!directory->MoveToSubDirectory(Name(), true)) throw ZipErrors::CannotWrite(Name());
    return;
  }
  const auto file = OpenOutput(*directory);
  const auto decoder = MakeDecoder();
  if (!decoder) throw ZipErrors::CannotDecompress();
  if (!decoder->Initialize()) throw ZipErrors::CannotInitialize();
  ZipEntryOutput output(*file, Name(), UncompressedSize());
  Decode(*decoder, output);
  output.Flush();
  if (!decoder->Finalize()) throw ZipErrors::CannotFinalize();
  if (output.Count() != UncompressedSize()) throw ZipErrors::SizeMismatch(Name());
  if (output.Crc() != central_.crc) throw ZipErrors::ChecksumMismatch(Name());
  // Some devices tell only now that they have lost what they took.
  if (!file->Close()) throw ZipErrors::CannotFinalize();
}

bool ZipCompressedFile::IsDirectory() const {
  return IsEmpty(central_) && IsEmpty(local_) && (Name().ends_with('/') || Name().ends_with('\\'));
}

bool ZipCompressedFile::IsOSRestrictedPath() const {
  return Name().find("__MACOSX") != std::string::npos ||
         Name().find(".DS_Store") != std::string::npos;
}

bool ZipCompressedFile::IsConforming() const {
  const bool isDecodable =
      central_.method == kStored || central_.method == kDeflated || central_.method == kDeflated64;
  return isDecodable && (central_.flags & kUnsupportedFlags) == 0 &&
         central_.diskNumberStart == 0 && !NeedsZip64(central_);
}

std::string ZipCompressedFile::CompressionMethod() const {
  return ZipDescriptions::OfMethod(central_.method);
}

std::string ZipCompressedFile::Creator() const {
  return ZipDescriptions::OfCreator(central_.versionMadeBy);
}

std::string ZipCompressedFile::LastModified() const {
  return ZipDescriptions::OfTime(central_.date, central_.time);
}

void ZipCompressedFile::CompareHeaders() const {
  if (central_.name != local_.name) {
    throw ZipErrors::Corrupted("File header mismatch: FILE NAME");
  }
  if (central_.method != local_.method) {
    throw ZipErrors::Corrupted("File header mismatch: COMPRESSION METHOD");
  }
  if (central_.flags != local_.flags) {
    throw ZipErrors::Corrupted("File header mismatch: FLAGS");
  }
}

std::shared_ptr<FileHandlerInterface> ZipCompressedFile::OpenOutput(
    DirectoryHandlerInterface& directory) const {
  const auto file =
      std::dynamic_pointer_cast<FileHandlerImpl>(directory.CreateFileHandlerInDirectory(Name()));
  if (!file || !file->OpenForWritingUnless(archivePath_)) throw ZipErrors::CannotWrite(Name());
  return file;
}

std::shared_ptr<StreamDecoderInterface> ZipCompressedFile::MakeDecoder() const {
  switch (central_.method) {
    case kStored:
      return StreamDecoderInterface::CreateDecompressor(Velmora::CompressionMethod::Stored);
    case kDeflated:
    case kDeflated64:
      return StreamDecoderInterface::CreateDecompressor(Velmora::CompressionMethod::Deflate);
    default:
      return nullptr;
  }
}

void ZipCompressedFile::Decode(StreamDecoderInterface& decoder, ZipEntryOutput& output) const {
  constexpr std::uint32_t kPiece = 128;
  const StreamDecoderInterface::Sink sink =
      [&output](const std::uint8_t* bytes, std::uint32_t count) { output.Append(bytes, count); };
  std::array<std::uint8_t, kPiece> piece{};
  std::uint64_t offset = dataOffset_;
  for (std::uint32_t left = CompressedSize();; left -= kPiece, offset += kPiece) {
    const bool isLast = left <= kPiece;
    const std::uint32_t count = isLast ? left : kPiece;
    if (!archive_->MoveToOffset(offset) || archive_->Read(count, piece.data()) != count) {
      throw ZipErrors::CannotRead();
    }
    if (!decoder.Process(piece.data(), static_cast<std::int32_t>(count), isLast, sink)) {
      throw ZipErrors::CannotDecompress();
    }
    if (isLast) return;
  }
}

}  // namespace Velmora
