#include "services/filesystem/DirectoryHandlerImpl.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "services/filesystem/FileHandlerImpl.h"
#include "services/filesystem/PathText.h"

namespace Velmora {
namespace {

// True when a directory is at `path`, if need be after making it with all its parents.
bool EnsureDirectoryExists(const std::string& path) {
  const auto fileManager = Platform::Host::Current()->fileManager;
  const auto type = fileManager->TypeOfItem(path);
  if (type != Platform::FileType::Missing) return type == Platform::FileType::Directory;
  return fileManager->CreateDirectory(path, nullptr);
}

}  // namespace

DirectoryHandlerImpl::DirectoryHandlerImpl(std::string path) : path_(std::move(path)) {}

std::string DirectoryHandlerImpl::GetPath() { return path_; }

bool DirectoryHandlerImpl::MoveToSubDirectory(const std::string& name, bool create) {
  std::string newPath = PathText::Below(path_, name);
  if (create && !EnsureDirectoryExists(newPath)) return false;
  path_ = std::move(newPath);
  return true;
}

bool DirectoryHandlerImpl::MoveToParentDirectory() {
  path_ = PathText::Below(path_, "..");
  return true;
}

std::shared_ptr<FileHandlerInterface> DirectoryHandlerImpl::CreateFileHandlerInDirectory(
    const std::string& name) {
  const std::string filePath = PathText::Below(path_, name);
  if (!EnsureDirectoryExists(PathText::Below(filePath, ".."))) return nullptr;
  return CreateNativeFileHandler(filePath);
}

std::shared_ptr<DirectoryHandlerInterface> DirectoryHandlerInterface::CreateFromPath(
    const std::string& path) {
  return std::make_shared<DirectoryHandlerImpl>(path);
}

std::shared_ptr<DirectoryHandlerInterface> DirectoryHandlerInterface::CreateFromDefaultCache() {
  return CreateFromPath(GetDefaultCacheDirectory());
}

std::string DirectoryHandlerInterface::GetDefaultCacheDirectory() {
  const auto fileManager = Platform::Host::Current()->fileManager;
  std::string path = fileManager->CachesDirectory();
  if (!path.empty() && fileManager->TypeOfItem(path) == Platform::FileType::Missing) {
    fileManager->CreateDirectory(path, nullptr);
  }
  return path;
}

}  // namespace Velmora
