#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "VelmoraCore/FileHandlerInterface.h"

namespace Velmora {

// Takes the decoded bytes of one entry, gathers them, and writes them to a file in large pieces.
// What is still gathered when the object goes is written then.
class ZipEntryOutput {
 public:
  // `file` is open for writing and outlives the object. More than `expectedSize` bytes are an
  // error, which names the entry.
  ZipEntryOutput(FileHandlerInterface& file, std::string name, std::uint64_t expectedSize);
  ~ZipEntryOutput();
  ZipEntryOutput(const ZipEntryOutput&) = delete;
  ZipEntryOutput& operator=(const ZipEntryOutput&) = delete;

  // Throws the error of a wrong size as soon as the file has refused bytes or holds more than are
  // expected: what follows could only fill the disk.
  void Append(const std::uint8_t* bytes, std::size_t count);

  // Writes what is gathered.
  void Flush();

  // What the file took so far, and the checksum of what it was given.
  std::uint64_t Count() const { return count_; }
  std::uint32_t Crc() const { return crc_; }

 private:
  FileHandlerInterface& file_;
  const std::string name_;
  const std::uint64_t expectedSize_;
  const std::size_t capacity_;
  const std::unique_ptr<std::uint8_t[]> gathered_;
  std::size_t gatheredCount_ = 0;
  std::uint64_t count_ = 0;
  std::uint32_t crc_;
  bool isRefused_ = false;
};

}  // namespace Velmora
