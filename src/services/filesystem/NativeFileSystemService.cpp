#include "services/filesystem/NativeFileSystemService.h"

#include <utility>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/SdkError.h"
#include "services/filesystem/FileHandlerImpl.h"
#include "services/filesystem/PathText.h"

namespace Velmora {
namespace {

using Platform::FileType;

constexpr const char* kLogTag = "NativeFileSystemService";
constexpr const char* kSourceLocation = "src/services/filesystem/NativeFileSystemService";

bool IsError(const Platform::Error& error) { return error != Platform::Error(); }

SdkError FileSystemError(const Platform::Error& error, int line) {
  return {ErrorCodes::kFileSystem, error.LocalizedDescription(), DebugInfo(kSourceLocation, line)};
}

}  // namespace

NativeFileSystemService::NativeFileSystemService()
    : Object(kLogTag), fileManager_(Platform::Host::Current()->fileManager) {}

std::shared_ptr<FileHandlerInterface> NativeFileSystemService::CreateFileHandler(
    const std::string& path) {
  return CreateNativeFileHandler(path);
}

bool NativeFileSystemService::MakeDirectory(const std::string& path) {
  const std::string absolutePath = AbsolutePath(path);
  const FileType type = fileManager_->TypeOfItem(absolutePath);
  if (type == FileType::Directory) return true;
  if (type != FileType::Missing) {
    Log::Debug(kLogTag, "Can't create directory %s because it is already a file", path.c_str());
    return false;
  }
  Platform::Error error;
  if (fileManager_->CreateDirectory(absolutePath, &error)) return true;
  if (IsError(error)) throw FileSystemError(error, __LINE__);
  Log::Debug(kLogTag, "Failed to create directory %s but no error returned", path.c_str());
  return false;
}

bool NativeFileSystemService::DeleteDirectory(const std::string& path) {
  const std::string absolutePath = AbsolutePath(path);
  const FileType type = fileManager_->TypeOfItem(absolutePath);
  if (type == FileType::Missing) return true;
  if (type != FileType::Directory) {
    Log::Debug(kLogTag, "Can't delete directory %s because it is a file", path.c_str());
    return false;
  }
  if (!GetDirectoryContents(path).empty()) {
    Log::Debug(kLogTag, "Can't delete directory %s because it has files", path.c_str());
    return false;
  }
  Platform::Error error;
  if (fileManager_->RemoveFileOrEmptyDirectory(absolutePath, &error)) {
    Log::Debug(kLogTag, "Deleted directory: %s", path.c_str());
    return true;
  }
  if (IsError(error)) {
    Log::Error(kLogTag, "Failed to delete directory %s:\n%s", path.c_str(),
               error.LocalizedDescription().c_str());
    throw FileSystemError(error, __LINE__);
  }
  Log::Debug(kLogTag, "Failed to delete directory %s but no error returned", path.c_str());
  return false;
}

bool NativeFileSystemService::DeleteFile(const std::string& path) {
  const std::string absolutePath = AbsolutePath(path);
  const FileType type = fileManager_->TypeOfItem(absolutePath);
  if (type == FileType::Missing) return true;
  if (type == FileType::Directory) {
    Log::Debug(kLogTag, "Can't delete %s because it is a directory", path.c_str());
    return false;
  }
  Platform::Error error;
  if (fileManager_->RemoveFileOrEmptyDirectory(absolutePath, &error)) {
    Log::Debug(kLogTag, "Deleted file successfully: %s", path.c_str());
    return true;
  }
  if (IsError(error)) {
    Log::Error(kLogTag, "Failed to delete file %s:\n%s", path.c_str(),
               error.LocalizedDescription().c_str());
    throw FileSystemError(error, __LINE__);
  }
  Log::Debug(kLogTag, "Failed to delete file %s but no error returned", path.c_str());
  return false;
}

bool NativeFileSystemService::IsDirectory(const std::string& path) const {
  return fileManager_->TypeOfItem(AbsolutePath(path)) == FileType::Directory;
}

bool NativeFileSystemService::DirectoryExists(const std::string& path) const {
  return IsDirectory(path);
}

bool NativeFileSystemService::DirectoryIsWritable(const std::string& path) const {
  return fileManager_->IsWritable(AbsolutePath(path));
}

std::vector<std::string> NativeFileSystemService::GetDirectoryContents(
    const std::string& path) const {
  return ListDirectory(path, Entries::All);
}

std::vector<std::string> NativeFileSystemService::GetDirectoryFiles(const std::string& path) const {
  return ListDirectory(path, Entries::RegularFiles);
}

std::string NativeFileSystemService::ReadStringFromFile(const std::string& path) const {
  if (path.empty()) {
    Log::Debug(kLogTag, "Failed to read file. File path parameter is empty.");
    return {};
  }
  Platform::Error error;
  auto text = fileManager_->ReadText(path, &error);
  if (text) return *std::move(text);
  if (IsError(error)) throw FileSystemError(error, __LINE__);
  return {};
}

char NativeFileSystemService::GetPathSeparatorChar() const { return '/'; }

std::string NativeFileSystemService::GetPathSeparator() const {
  return std::string(1, GetPathSeparatorChar());
}

std::string NativeFileSystemService::AbsolutePath(const std::string& path) const {
  if (path.starts_with('/')) return path;
  return PathText::Append(fileManager_->CurrentDirectoryPath(), path);
}

std::vector<std::string> NativeFileSystemService::ListDirectory(const std::string& path,
                                                                Entries wanted) const {
  std::vector<std::string> names;
  for (auto& entry : fileManager_->ContentsOfDirectory(AbsolutePath(path), nullptr)) {
    if (wanted == Entries::RegularFiles && entry.type != FileType::Regular) continue;
    names.push_back(std::move(entry.name));
  }
  return names;
}

std::shared_ptr<FileSystemServiceInterface> CreateNativeFileSystemService() {
  return std::make_shared<NativeFileSystemService>();
}

}  // namespace Velmora
