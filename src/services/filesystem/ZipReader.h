#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "VelmoraCore/FileHandlerInterface.h"

namespace Velmora {

// Numbers from the bytes of one header, one after the other, the lowest byte first. Throws the
// error of a file that cannot be read rather than go beyond the bytes.
class ZipNumbers {
 public:
  explicit ZipNumbers(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  std::uint16_t Next16();
  std::uint32_t Next32();

 private:
  std::span<const std::uint8_t> Take(std::size_t count);

  std::span<const std::uint8_t> rest_;
};

// Reads an open archive at any place, never beyond its end. Belongs to one caller at a time.
class ZipReader {
 public:
  // `file`, which lies at `path`, is open for reading and holds `size` bytes.
  ZipReader(std::string path, std::shared_ptr<FileHandlerInterface> file, std::uint64_t size);

  const std::string& Path() const { return path_; }
  std::uint64_t Size() const { return size_; }

  // Exactly as many bytes as `bytes` has room for. Throws when the file holds fewer, or when the
  // device fails.
  void Read(std::uint64_t offset, std::span<std::uint8_t> bytes);
  std::string ReadText(std::uint64_t offset, std::size_t count);

  // `count` bytes, which stay valid until the next call. What lies behind them is read along, so
  // that a walk through the headers of the directory does not disturb what was read ahead of the
  // entries between two steps.
  std::span<const std::uint8_t> ReadDirectory(std::uint64_t offset, std::size_t count);

  const std::shared_ptr<FileHandlerInterface>& File() const { return file_; }

 private:
  // False when the range reaches beyond the end of the file.
  bool Holds(std::uint64_t offset, std::size_t count) const {
    return offset <= size_ && count <= size_ - offset;
  }

  const std::string path_;
  const std::shared_ptr<FileHandlerInterface> file_;
  const std::uint64_t size_;
  std::vector<std::uint8_t> directory_;  // what was read along, from directoryStart_ on
  std::uint64_t directoryStart_ = 0;
};

}  // namespace Velmora
