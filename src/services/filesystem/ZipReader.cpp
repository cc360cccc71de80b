#include "services/filesystem/ZipReader.h"

#include <algorithm>
#include <utility>

#include "services/filesystem/ZipErrors.h"

namespace Velmora {

std::uint16_t ZipNumbers::Next16() {
  const auto bytes = Take(2);
  return static_cast<std::uint16_t>(bytes[0] | (bytes[1] << 8));
}

std::uint32_t ZipNumbers::Next32() {
  const std::uint32_t low = Next16();
  const std::uint32_t high = Next16();
  return low | (high << 16);
}

std::span<const std::uint8_t> ZipNumbers::Take(std::size_t count) {
  if (rest_.size() < count) throw ZipErrors::CannotRead();
  const auto taken = rest_.first(count);
  rest_ = rest_.subspan(count);
  return taken;
}

ZipReader::ZipReader(std::string path, std::shared_ptr<FileHandlerInterface> file,
                     std::uint64_t size)
    : path_(std::move(path)), file_(std::move(file)), size_(size) {}

void ZipReader::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
  if (!Holds(offset, bytes.size()) || !file_->MoveToOffset(offset)) throw ZipErrors::CannotRead();
  const auto count = static_cast<std::uint32_t>(bytes.size());
  if (file_->Read(count, bytes.data()) != count) throw ZipErrors::CannotRead();
}

std::string ZipReader::ReadText(std::uint64_t offset, std::size_t count) {
  std::string text(count, '\0');
  Read(offset, {reinterpret_cast<std::uint8_t*>(text.data()), count});
  return text;
}

std::span<const std::uint8_t> ZipReader::ReadDirectory(std::uint64_t offset, std::size_t count) {
  constexpr std::size_t kPiece = std::size_t{16} * 1024;
  if (!Holds(offset, count)) throw ZipErrors::CannotRead();
  const bool isThere = offset >= directoryStart_ && offset - directoryStart_ <= directory_.size() &&
                       count <= directory_.size() - (offset - directoryStart_);
  if (!isThere) {
    const auto left = static_cast<std::size_t>(size_ - offset);
    std::vector<std::uint8_t> piece(std::min(std::max(count, kPiece), left));
    Read(offset, piece);
    directory_ = std::move(piece);
    directoryStart_ = offset;
  }
  return std::span<const std::uint8_t>(directory_)
      .subspan(static_cast<std::size_t>(offset - directoryStart_), count);
}

}  // namespace Velmora
