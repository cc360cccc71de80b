#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/FileManager.h"

namespace Platform {

// Files on POSIX. Errors have the domain "platform.files" and the errno value as their code. Child
// processes inherit nothing that is open here.
class LinuxFileManager : public FileManager {
 public:
  std::string CurrentDirectoryPath() const override;
  FileType TypeOfItem(const std::string& path) const override;
  bool IsWritable(const std::string& path) const override;
  bool CreateDirectory(const std::string& path, Error* error) override;

  // A missing item is an error.
  bool RemoveItem(const std::string& path, Error* error) override;
  bool RemoveFileOrEmptyDirectory(const std::string& path, Error* error) override;

  std::vector<DirectoryEntry> ContentsOfDirectory(const std::string& path,
                                                  Error* error) const override;
  std::optional<FileAttributes> AttributesOfItem(const std::string& path) const override;
  std::optional<std::string> ReadText(const std::string& path, Error* error) const override;
  bool WriteFile(const std::string& path, std::string_view bytes, Error* error) override;
  std::unique_ptr<FileHandle> OpenForReading(const std::string& path) override;
  std::unique_ptr<FileHandle> OpenForWriting(const std::string& path,
                                             const std::string& spared) override;

  // A folder named after the running program in the user's cache directory.
  std::string CachesDirectory() const override;

  // "group-containers/<group>" in the user's data directory. A group whose name cannot be that of
  // one folder has none.
  std::string GroupContainerDirectory(const std::string& group) const override;
};

}  // namespace Platform
