#pragma once

#include <cstddef>
#include <cstdint>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// A file opened for reading or for writing, never both.
//
// Belongs to one caller at a time: no two operations may run at once. The descriptor closes with
// Close() or, silently, with the object. Child processes do not inherit it.
class QEXCORE_API FileHandle {
 public:
  virtual ~FileHandle();

  // The offset at which the next Read or Write begins.
  virtual std::uint64_t Offset() const = 0;

  // Moves to `offset` bytes from the start of the file, beyond its end if need be.
  virtual void Seek(std::uint64_t offset) = 0;

  // Reads up to `count` bytes at the current offset into `buffer` and moves past them. Returns how
  // many were read: fewer than `count` only at the end of the file. Throws Platform::DeviceError
  // when the device fails; the offset then stays where it was.
  virtual std::size_t Read(void* buffer, std::size_t count) = 0;

  // Writes `count` bytes at the current offset and moves past what was written. Throws
  // Platform::DeviceError when the device fails (a full disk, say); the offset then tells how much
  // was written.
  virtual void Write(const void* bytes, std::size_t count) = 0;

  // Closes the file. Every operation after it throws Platform::DeviceError.
  virtual void Close() = 0;
};

}  // namespace Platform
