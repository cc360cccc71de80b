#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/FileManager.h"
#include "VelmoraCore/FileSystemServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// The file system of the device that is installed when the service is made. Keeps no state of its
// own. The directory and delete operations start relative paths at the current directory, as it is
// at the call; log lines name paths as they were given.
class NativeFileSystemService : public Object, public virtual FileSystemServiceInterface {
 public:
  NativeFileSystemService();

  std::shared_ptr<FileHandlerInterface> CreateFileHandler(const std::string& path) override;
  bool MakeDirectory(const std::string& path) override;
  bool DeleteDirectory(const std::string& path) override;
  bool DeleteFile(const std::string& path) override;
  bool IsDirectory(const std::string& path) const override;
  bool DirectoryExists(const std::string& path) const override;
  bool DirectoryIsWritable(const std::string& path) const override;
  std::vector<std::string> GetDirectoryContents(const std::string& path) const override;
  std::vector<std::string> GetDirectoryFiles(const std::string& path) const override;
  std::string ReadStringFromFile(const std::string& path) const override;
  char GetPathSeparatorChar() const override;
  std::string GetPathSeparator() const override;

 private:
  enum class Entries { All, RegularFiles };

  std::string AbsolutePath(const std::string& path) const;
  std::vector<std::string> ListDirectory(const std::string& path, Entries wanted) const;

  std::shared_ptr<Platform::FileManager> fileManager_;
};

std::shared_ptr<FileSystemServiceInterface> CreateNativeFileSystemService();

}  // namespace Velmora
