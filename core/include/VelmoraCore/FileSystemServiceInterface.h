#pragma once

#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/FileHandlerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Files and directories by path. May be called on any thread.
//
// Paths are UTF-8 with "/" between components. Relative ones start at the process's current
// directory. An error that the device reports is thrown as an SdkError "filesystem"; every other
// failure is a false or empty result with a debug line.
class VELMORA_CORE_API FileSystemServiceInterface : public virtual ObjectInterface {
 public:
  ~FileSystemServiceInterface() override;

  // A handler on `path`, owned by the caller. Touches nothing on disk.
  virtual std::shared_ptr<FileHandlerInterface> CreateFileHandler(const std::string& path) = 0;

  // Makes the directory with all its parents. True when it is there already, false when a file is.
  virtual bool MakeDirectory(const std::string& path) = 0;

  // Deletes an empty directory. True when there is none; false for a file or when it holds
  // anything.
  virtual bool DeleteDirectory(const std::string& path) = 0;

  // Deletes a file. True when there is none; false for a directory.
  virtual bool DeleteFile(const std::string& path) = 0;

  // True when the path exists and is a directory; the two always agree.
  virtual bool IsDirectory(const std::string& path) const = 0;
  virtual bool DirectoryExists(const std::string& path) const = 0;

  virtual bool DirectoryIsWritable(const std::string& path) const = 0;

  // The names in a directory, in no particular order: every entry, or regular files only. Empty
  // when it cannot be read.
  virtual std::vector<std::string> GetDirectoryContents(const std::string& path) const = 0;
  virtual std::vector<std::string> GetDirectoryFiles(const std::string& path) const = 0;

  // The whole file as UTF-8 text. Empty for an empty path.
  virtual std::string ReadStringFromFile(const std::string& path) const = 0;

  // Always '/', as a character and as a text.
  virtual char GetPathSeparatorChar() const = 0;
  virtual std::string GetPathSeparator() const = 0;
};

}  // namespace Velmora
