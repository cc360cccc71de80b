#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/FileHandle.h"

namespace Platform {

enum class FileType { Missing, Regular, Directory, Other };

struct DirectoryEntry {
  std::string name;  // relative to the listed directory, the bytes that the file system holds
  FileType type = FileType::Other;  // of the entry itself: a symbolic link is Other
};

struct FileAttributes {
  std::int64_t size = 0;                                // bytes
  std::chrono::system_clock::time_point modified = {};  // the last change of the contents
};

// The file system. Paths are bytes, "/" separates their parts, and relative ones start at the
// process's current directory. Symbolic links are followed, save by the operations that remove,
// which remove the link itself, and in the types of a directory's entries.
//
// Safe from any thread. Operations that take an Error write it, where it is not null, only when
// they fail; its description names the path. Nothing here throws.
class QEXCORE_API FileManager {
 public:
  virtual ~FileManager();

  virtual std::string CurrentDirectoryPath() const = 0;

  // What lies at `path`: Missing also where it cannot be reached.
  virtual FileType TypeOfItem(const std::string& path) const = 0;

  virtual bool IsWritable(const std::string& path) const = 0;

  // Makes the directory and every missing parent. Succeeds when it is already there.
  virtual bool CreateDirectory(const std::string& path, Error* error) = 0;

  // Removes a file, a symbolic link, or a directory with all that is in it.
  virtual bool RemoveItem(const std::string& path, Error* error) = 0;

  // The same, but fails for a directory that is not empty, whoever fills it and when.
  virtual bool RemoveFileOrEmptyDirectory(const std::string& path, Error* error) = 0;

  // The entries of a directory, without "." and "..", in the order of the file system; empty when
  // it cannot be listed.
  virtual std::vector<DirectoryEntry> ContentsOfDirectory(const std::string& path,
                                                          Error* error) const = 0;

  // Nothing for a missing item.
  virtual std::optional<FileAttributes> AttributesOfItem(const std::string& path) const = 0;

  // The whole regular file as text. Fails for one that is not UTF-8 and for one beyond 512 MiB,
  // as much as a response may bring.
  virtual std::optional<std::string> ReadText(const std::string& path, Error* error) const = 0;

  // Writes a file of exactly these bytes, in the place of what is there. Whoever reads the path
  // meanwhile, also after a kill or a power cut, finds the former file or the new one, whole.
  virtual bool WriteFile(const std::string& path, std::string_view bytes, Error* error) = 0;

  // Null when the file cannot be opened.
  virtual std::unique_ptr<FileHandle> OpenForReading(const std::string& path) = 0;

  // Makes an empty file, or empties the one that is there, and opens it. Null when that cannot be;
  // also, with nothing changed, when `path` leads, by whatever links, to the file at `spared`. An
  // empty `spared` names no file.
  virtual std::unique_ptr<FileHandle> OpenForWriting(const std::string& path,
                                                     const std::string& spared) = 0;

  // The user's directory for files that can be made again. Not created here; empty when the
  // platform names none.
  virtual std::string CachesDirectory() const = 0;

  // The directory shared by the applications of `group`; empty when there is none for it.
  virtual std::string GroupContainerDirectory(const std::string& group) const = 0;
};

}  // namespace Platform
