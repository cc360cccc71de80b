#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

// Where the writers of all processes note what they were told to be stored.
struct StressBoard {
  static constexpr std::size_t kProcesses = 2;
  static constexpr std::size_t kThreads = 8;
  static constexpr std::size_t kKeys = kProcesses * kThreads;

  static constexpr std::int64_t kPacedWrites = 40;

  static std::string KeyOf(std::size_t index) { return "stress." + std::to_string(index); }

  std::atomic<std::int64_t> stored[kKeys];
  std::atomic<std::int64_t> seen;  // by the reader of paced writes

  // The board in a file that all processes map. A new file holds zeros.
  class Mapping {
   public:
    explicit Mapping(const std::string& path) {
      const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
      if (file < 0 || ::ftruncate(file, sizeof(StressBoard)) != 0) throw std::runtime_error(path);
      void* memory =
          ::mmap(nullptr, sizeof(StressBoard), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
      ::close(file);
      if (memory == MAP_FAILED) throw std::runtime_error(path);
      board_ = static_cast<StressBoard*>(memory);
    }
    ~Mapping() { ::munmap(static_cast<void*>(board_), sizeof(StressBoard)); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    StressBoard& operator*() const { return *board_; }
    StressBoard* operator->() const { return board_; }

   private:
    StressBoard* board_;
  };
};
