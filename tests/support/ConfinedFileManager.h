#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/LinuxFileManager.h"

namespace TestSupport {

// The real file system, of which nothing can be changed outside one directory: what tries to fails
// as it does without permission. Links are not looked at, so none may lead out of the directory.
// Belongs to one thread.
class ConfinedFileManager final : public Platform::LinuxFileManager {
 public:
  static constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

  // `root` is absolute, without "." and "..".
  explicit ConfinedFileManager(std::string root = "/", std::uint64_t bytesToWrite = kNoLimit);
  ~ConfinedFileManager() override;

  // From now on all handles together write so many bytes; writing then fails.
  void SetBytesToWrite(std::uint64_t bytes) { bytesToWrite_ = bytes; }

  // What is left of them.
  std::uint64_t BytesToWrite() const { return bytesToWrite_; }

  bool IsWritable(const std::string& path) const override;
  bool CreateDirectory(const std::string& path, Platform::Error* error) override;
  bool RemoveItem(const std::string& path, Platform::Error* error) override;
  bool RemoveFileOrEmptyDirectory(const std::string& path, Platform::Error* error) override;
  bool WriteFile(const std::string& path, std::string_view bytes, Platform::Error* error) override;
  std::unique_ptr<Platform::FileHandle> OpenForWriting(const std::string& path,
                                                       const std::string& spared) override;

 private:
  class Handle;

  bool IsInside(const std::string& path) const;
  bool Permits(const std::string& path, Platform::Error* error) const;

  const std::string root_;
  std::uint64_t bytesToWrite_;
};

}  // namespace TestSupport
