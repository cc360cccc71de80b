#include "services/filesystem/ZipFile.h"

#include "services/filesystem/FileHandlerImpl.h"
#include "services/filesystem/ZipErrors.h"

namespace Velmora {

ZipFile::ZipFile(const std::string& path)
    : reader_(Open(path)), endRecord_(ZipRecords::ReadEndRecord(reader_)) {
  RefuseUnsupported();
  LoadEntries();
}

ZipCompressedFile ZipFile::Entry(std::size_t index) { return {reader_, headerOffsets_.at(index)}; }

ZipReader ZipFile::Open(const std::string& path) {
  constexpr std::int64_t kLargestArchive = 268'435'456;
  auto file = CreateNativeFileHandler(path);
  const std::int64_t size = file->Size();
  if (size > kLargestArchive || !file->OpenForReading()) throw ZipErrors::CannotOpen();
  return {path, std::move(file), static_cast<std::uint64_t>(size)};
}

void ZipFile::RefuseUnsupported() const {
  constexpr std::uint16_t kMostEntries = 10'000;
  constexpr std::uint16_t kZip64Count = 0xFFFF;
  constexpr std::uint32_t kZip64Number = 0xFFFFFFFF;
  if (endRecord_.entriesOnDisk == kZip64Count || endRecord_.totalEntries == kZip64Count ||
      endRecord_.directorySize == kZip64Number || endRecord_.directoryOffset == kZip64Number) {
    throw ZipErrors::Corrupted("ZIP64 files are not supported");
  }
  if (endRecord_.diskNumber != 0 || endRecord_.directoryDisk != 0 ||
      endRecord_.entriesOnDisk != endRecord_.totalEntries) {
    throw ZipErrors::Corrupted("Multi-disk zip files are not supported");
  }
  if (endRecord_.totalEntries > kMostEntries) {
    throw ZipErrors::Corrupted("Zip file has more than 10000 entries");
  }
}

void ZipFile::LoadEntries() {
  std::uint64_t offset = endRecord_.directoryOffset;
  headerOffsets_.reserve(endRecord_.totalEntries);
  while (headerOffsets_.size() < endRecord_.totalEntries) {
    const ZipCompressedFile entry(reader_, offset);
    isConforming_ = isConforming_ && entry.IsConforming();
    headerOffsets_.push_back(offset);
    offset += entry.CentralHeader().Length();
  }
}

}  // namespace Velmora
