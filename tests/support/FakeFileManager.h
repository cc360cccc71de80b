#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/LinuxFileManager.h"
#include "support/Guarded.h"
#include "support/TemporaryDirectory.h"

namespace TestSupport {

// What can be made to fail.
enum class FileFault {
  CreateDirectory,
  RemoveItem,  // and of a file or an empty directory
  ContentsOfDirectory,
  ReadText,
  WriteFile,
  OpenForReading,
  OpenForWriting,
  Seek,
  Read,
  Write,
  Close,
};

// The real file system, with caches and group containers in a temporary folder of its own, and with
// faults that tests switch on and off. Safe from any thread.
class FakeFileManager final : public Platform::LinuxFileManager {
 public:
  FakeFileManager();
  ~FakeFileManager() override;

  // From now on the operation fails: with this error where it reports one, and with
  // Platform::DeviceError of the same description where it throws. Handles opened before fail too.
  void Fail(FileFault fault,
            const Platform::Error& error = Platform::Error("test", 1, "The device failed."));

  // From now on the operation fails without writing an error.
  void FailSilently(FileFault fault) { Fail(fault, Platform::Error()); }

  // From now on, all handles together write, or read, this many more bytes and then throw.
  void FailWritesAfter(std::uint64_t bytes);
  void FailReadsAfter(std::uint64_t bytes);

  // Takes every fault back.
  void Heal();

  // An empty text: the platform names none.
  void SetCachesDirectory(const std::string& path) { cachesDirectory_.Set(path); }
  void SetGroupContainerDirectory(const std::string& group, const std::string& path);

  bool CreateDirectory(const std::string& path, Platform::Error* error) override;
  bool RemoveItem(const std::string& path, Platform::Error* error) override;
  bool RemoveFileOrEmptyDirectory(const std::string& path, Platform::Error* error) override;
  std::vector<Platform::DirectoryEntry> ContentsOfDirectory(const std::string& path,
                                                            Platform::Error* error) const override;
  std::optional<std::string> ReadText(const std::string& path,
                                      Platform::Error* error) const override;
  bool WriteFile(const std::string& path, std::string_view bytes, Platform::Error* error) override;
  std::unique_ptr<Platform::FileHandle> OpenForReading(const std::string& path) override;
  std::unique_ptr<Platform::FileHandle> OpenForWriting(const std::string& path,
                                                       const std::string& spared) override;

  // "caches" in the temporary folder, unless set; not created.
  std::string CachesDirectory() const override { return cachesDirectory_.Get(); }

  // "groups/<group>" in the temporary folder, unless set; empty for a group that cannot be a
  // folder's name.
  std::string GroupContainerDirectory(const std::string& group) const override;

 private:
  class Faults;
  class Handle;

  TemporaryDirectory folder_;
  std::shared_ptr<Faults> faults_;
  Guarded<std::string> cachesDirectory_;
  Guarded<std::map<std::string, std::string>> groupContainers_;
};

}  // namespace TestSupport
