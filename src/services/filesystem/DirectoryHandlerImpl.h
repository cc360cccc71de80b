#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/DirectoryHandlerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A place in the file system of the installed device. Paths are folded as texts, without a look at
// links; a relative path stays relative.
class DirectoryHandlerImpl : public Object, public virtual DirectoryHandlerInterface {
 public:
  explicit DirectoryHandlerImpl(std::string path);

  std::string GetPath() override;
  bool MoveToSubDirectory(const std::string& name, bool create) override;
  bool MoveToParentDirectory() override;
  std::shared_ptr<FileHandlerInterface> CreateFileHandlerInDirectory(
      const std::string& name) override;

 private:
  std::string path_;
};

}  // namespace Velmora
