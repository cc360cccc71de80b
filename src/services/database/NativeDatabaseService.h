#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "VelmoraCore/DatabaseServiceInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"

namespace Velmora {

class Database;

// Opens SQLite files in the application's cache directory, by name, and keeps each open until it is
// deleted or the service goes. Safe from any thread: one lock covers every operation, the opening
// and deleting of the file included.
class NativeDatabaseService final : public Object, public virtual DatabaseServiceInterface {
 public:
  // Throws SdkError "platform_services.missing_service" for an empty pointer.
  explicit NativeDatabaseService(
      const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService);

  // Names that become the same file name give the same database. Without a cache directory a new
  // database is a private temporary one. Keeps nothing when the file cannot be opened.
  std::shared_ptr<DatabaseInterface> OpenDatabase(const std::string& name) override;

  // Only databases that this service has open can be deleted, and only a file is removed, never a
  // directory that has come into its place. False whatever fails. The database is let go of even
  // where nothing could be removed; whoever still holds it may go on using it.
  bool DeleteDatabase(const std::string& name) override;

  // The name as that of a file in the cache directory, without a way out of it.
  static std::string RemoveRelativePathComponent(const std::string& name);

 private:
  const std::shared_ptr<SystemInfoServiceInterface> systemInfoService_;
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Database>> databases_;  // by file name
};

std::shared_ptr<DatabaseServiceInterface> CreateNativeDatabaseService(
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService);

}  // namespace Velmora
