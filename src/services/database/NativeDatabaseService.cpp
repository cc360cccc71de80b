#include "services/database/NativeDatabaseService.h"

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/StringUtils.h"
#include "services/database/Database.h"

namespace Velmora {
namespace {

// The path of the file `name`, which holds no "/", in `directory`, with one "/" between them.
std::string PathIn(std::string directory, const std::string& name) {
  const bool isAbsolute = directory.starts_with('/');
  while (directory.ends_with('/')) directory.pop_back();
  return directory.empty() && !isAbsolute ? name : directory + "/" + name;
}

bool RemoveFile(const std::string& path, Database& database) {
  database.OutliveFile();
  const std::shared_ptr<Platform::FileManager> files = Platform::Host::Current()->fileManager;
  switch (files->TypeOfItem(path)) {
    case Platform::FileType::Missing:
    case Platform::FileType::Directory:
      return false;
    case Platform::FileType::Regular:
    case Platform::FileType::Other:
      break;
  }
  const bool removed = files->RemoveFileOrEmptyDirectory(path, nullptr);
  if (!removed) database.KeepFile();
  return removed;
}

// False as well when the device throws, be it against its promise: of a deletion that failed the
// core hears nothing more.
bool RemoveDatabaseFile(const SystemInfoServiceInterface& systemInfo, const std::string& name,
                        Database& database) noexcept {
  try {
    return RemoveFile(PathIn(systemInfo.GetApplicationCacheDir(), name), database);
  } catch (...) {
    database.KeepFile();
    return false;
  }
}

}  // namespace

NativeDatabaseService::NativeDatabaseService(
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService)
    : systemInfoService_(systemInfoService) {
  if (!systemInfoService_) {
    throw SdkError(ErrorCodes::kPlatformServicesMissingService, "SystemInfo Service",
                   DebugInfo("src/services/database/NativeDatabaseService", __LINE__));
  }
}

std::shared_ptr<DatabaseInterface> NativeDatabaseService::OpenDatabase(const std::string& name) {
  const std::lock_guard lock(mutex_);
  const std::string fileName = RemoveRelativePathComponent(name);
  if (const auto open = databases_.find(fileName); open != databases_.end()) return open->second;
  const auto database =
      std::make_shared<Database>(fileName, systemInfoService_->GetApplicationCacheDir());
  databases_.emplace(fileName, database);
  return database;
}

bool NativeDatabaseService::DeleteDatabase(const std::string& name) {
  if (name.empty()) return false;
  const std::lock_guard lock(mutex_);
  const auto open = databases_.find(RemoveRelativePathComponent(name));
  if (open == databases_.end()) return false;
  const bool removed = RemoveDatabaseFile(*systemInfoService_, open->first, *open->second);
  databases_.erase(open);
  return removed;
}

std::string NativeDatabaseService::RemoveRelativePathComponent(const std::string& name) {
  const std::string withoutBackslashes = StringUtils::Replace(name, "\\", "_");
  const std::string withoutSlashes = StringUtils::Replace(withoutBackslashes, "/", "_");
  const std::string withoutParents = StringUtils::Replace(withoutSlashes, "..", "");
  return StringUtils::Replace(withoutParents, "__", "_");
}

std::shared_ptr<DatabaseServiceInterface> CreateNativeDatabaseService(
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService) {
  return std::make_shared<NativeDatabaseService>(systemInfoService);
}

}  // namespace Velmora
