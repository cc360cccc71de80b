#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/FileHandle.h"
#include "platform/linux/FileDescriptor.h"

namespace Platform {

// A file on POSIX. Reads are taken from the device in pieces of kReadAhead bytes; writes go
// straight down.
class LinuxFileHandle final : public FileHandle {
 public:
  static constexpr std::size_t kReadAhead = std::size_t{64} * 1024;

  // `file` is open; `path` is named in errors.
  LinuxFileHandle(FileDescriptor file, std::string path);

  std::uint64_t Offset() const override;
  void Seek(std::uint64_t offset) override;
  std::size_t Read(void* buffer, std::size_t count) override;
  void Write(const void* bytes, std::size_t count) override;
  void Close() override;

 private:
  void ThrowIfClosed(const char* action) const {
    if (!file_.IsOpen()) ThrowClosed(action);
  }
  [[noreturn]] void ThrowClosed(const char* action) const;
  std::size_t TakeFromAhead(std::uint64_t offset, std::byte* buffer, std::size_t count) const;
  void FillAhead(std::uint64_t offset);
  std::size_t ReadFromDevice(std::uint64_t offset, std::byte* buffer, std::size_t count) const;
  void DropAhead() { aheadLength_ = 0; }

  FileDescriptor file_;
  std::string path_;
  std::uint64_t offset_ = 0;

  // What was read ahead: aheadLength_ bytes that begin at aheadStart_ in the file. The memory comes
  // with the first small read.
  std::unique_ptr<std::byte[]> ahead_;
  std::uint64_t aheadStart_ = 0;
  std::size_t aheadLength_ = 0;
};

}  // namespace Platform
