#pragma once

#include <chrono>
#include <cstdint>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// One file, opened for reading or for writing, never both. Belongs to one caller at a time. No
// operation throws: a failing device shows in the result.
class VELMORA_CORE_API FileHandlerInterface : public virtual ObjectInterface {
 public:
  // Whole seconds, counted in microseconds.
  using ModificationTime =
      std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

  ~FileHandlerInterface() override;

  // Bytes in the file, open or not; 0 when it is missing.
  virtual std::int64_t Size() = 0;

  // When the file was last modified; the start of 1970 when it is missing.
  virtual ModificationTime LastModified() = 0;

  // Opens the file at its start. Opening for writing makes or empties it first. Either replaces
  // what was open before.
  virtual bool OpenForReading() = 0;
  virtual bool OpenForWriting() = 0;

  // Goes to `offset` bytes from the start. False when no file is open or the device refuses.
  virtual bool MoveToOffset(std::uint64_t offset) = 0;

  // Writes `count` bytes at the present offset. Returns how many were written: 0 when no file is
  // open, fewer than `count` when the device fails.
  virtual std::uint32_t Write(std::uint32_t count, const std::uint8_t* bytes) = 0;

  // Reads into `buffer`, which holds `count` bytes. Returns how many were read: 0 when no file is
  // open, fewer than `count` at the end of the file or when the device fails; once a file is open,
  // the rest of the buffer is filled with zeros.
  virtual std::uint32_t Read(std::uint32_t count, std::uint8_t* buffer) = 0;

  // False when no file is open, and when the device tells only now that it has lost something.
  virtual bool Close() = 0;
};

}  // namespace Velmora
