#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/FileHandlerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A place in the file system from which to reach directories and files by name. Belongs to one
// caller at a time. Paths are UTF-8 with "/" between components, "." and ".." are folded; nothing
// keeps a name with ".." inside the directory. No operation throws.
class VELMORA_CORE_API DirectoryHandlerInterface : public virtual ObjectInterface {
 public:
  ~DirectoryHandlerInterface() override;

  // The three static operations are defined by the platform layer.

  // Starts at `path`, as given and unchecked.
  static std::shared_ptr<DirectoryHandlerInterface> CreateFromPath(const std::string& path);

  // Starts at GetDefaultCacheDirectory().
  static std::shared_ptr<DirectoryHandlerInterface> CreateFromDefaultCache();

  // The user's directory for caches, made where it is missing; empty when the device names none.
  static std::string GetDefaultCacheDirectory();

  virtual std::string GetPath() = 0;

  // Moves to `name` below the present path. With `create`, the directory is made with all its
  // parents; when that fails the result is false and the path stays. Without, nothing is checked.
  virtual bool MoveToSubDirectory(const std::string& name, bool create) = 0;

  // Moves one directory up; "/" stays "/". Always true.
  virtual bool MoveToParentDirectory() = 0;

  // A handler, not yet open, on the file `name` below the present path. Makes missing directories
  // on the way to it; an empty pointer when that fails.
  virtual std::shared_ptr<FileHandlerInterface> CreateFileHandlerInDirectory(
      const std::string& name) = 0;
};

}  // namespace Velmora
