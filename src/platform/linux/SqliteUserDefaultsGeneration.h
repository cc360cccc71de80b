#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "platform/linux/FileDescriptor.h"

namespace Platform {

// What the processes that share a file of user defaults tell each other, in a small file that all
// of them map: the generation of the contents, and which file it is that holds them.
//
// The generation is odd while a write is under way, and moves on, never back, with each write. So
// what was read while it stood at one even number is true for as long as it stands there. A process
// that dies in a write leaves it odd.
//
// Load and the like may be called on any thread; a Lock belongs to one.
class SqliteUserDefaultsGeneration {
 public:
  // A write that is under way: the generation that it found and the one that it made of it.
  struct Write {
    std::uint64_t before;
    std::uint64_t odd;
  };

  // Opens the file, and makes it when it is missing. Throws SqliteUserDefaultsError, also when the
  // lock of a file in the making does not come free in time.
  SqliteUserDefaultsGeneration(const std::string& path, std::chrono::milliseconds patience);
  ~SqliteUserDefaultsGeneration();
  SqliteUserDefaultsGeneration(const SqliteUserDefaultsGeneration&) = delete;
  SqliteUserDefaultsGeneration& operator=(const SqliteUserDefaultsGeneration&) = delete;

  // Keeps every other process and thread from opening or replacing the file.
  class Lock {
   public:
    // Throws SqliteUserDefaultsError when the lock does not come free in time.
    Lock(const SqliteUserDefaultsGeneration& generation, std::chrono::milliseconds patience)
        : Lock(generation.descriptor_.Number(), patience) {}
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    friend class SqliteUserDefaultsGeneration;
    Lock(int descriptor, std::chrono::milliseconds patience);

    const int descriptor_;
  };

  static bool IsEven(std::uint64_t generation) { return generation % 2 == 0; }

  std::uint64_t Load() const noexcept { return shared_->generation.load(); }

  // Moves on to the next odd number.
  Write BeginWrite() noexcept;

  // Moves on from `odd` to the even number behind it. False, without any change, when another write
  // has begun since.
  bool EndWrite(std::uint64_t odd) noexcept;

  // Counts the files that have held the contents: a new one takes the place of a damaged one.
  std::uint64_t Incarnation() const noexcept { return shared_->incarnation.load(); }

  // Call it under the lock, with the new file's way free. Moves the generation on as well.
  void BeginIncarnation() noexcept;

 private:
  struct Shared {  // NOLINT(clang-analyzer-optin.performance.Padding): one cache line for each
    std::atomic<std::uint64_t> incarnation;
    alignas(64) std::atomic<std::uint64_t> generation;
  };
  static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

  FileDescriptor descriptor_;
  Shared* shared_ = nullptr;
};

}  // namespace Platform
