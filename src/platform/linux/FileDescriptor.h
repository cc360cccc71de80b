#pragma once

#include <utility>

#include <unistd.h>

namespace Platform {

// Owns a file descriptor, and closes it silently when it goes. Belongs to one thread at a time.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  ~FileDescriptor() { Close(); }
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  bool IsOpen() const { return number_ >= 0; }
  int Number() const { return number_; }

  // What close(2) returns, with errno set by it; 0 when nothing was open.
  int Close() { return IsOpen() ? ::close(std::exchange(number_, -1)) : 0; }

 private:
  int number_ = -1;
};

}  // namespace Platform
