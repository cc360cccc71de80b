#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "platform/linux/SqliteUserDefaultsForkGuard.h"
#include "platform/linux/SqliteUserDefaultsStore.h"

namespace Platform {

// User defaults in one SQLite database, "<folder>/<file>.db", with "-wal", "-shm" and "-generation"
// beside it. Nothing but this class may open these files while any process uses them; who removes
// them has to stop the processes first.
//
// A file that is damaged, or no user defaults, is renamed to "<file>.db.corrupt-<UTC time>" and
// makes room for an empty one. One line on the system log tells so; of other failures the first of
// each kind is told, and again after an operation has succeeded.
//
// A child process that fork(2) made may go on using the object, as far as any object may be used
// between fork and exec.
class SqliteUserDefaults final : public UserDefaults, private SqliteUserDefaultsForkGuard {
 public:
  // Opens nothing yet. No operation waits longer than about `patience` for each lock that another
  // process holds.
  SqliteUserDefaults(std::string folder, const std::string& file,
                     std::shared_ptr<SystemLog> systemLog, std::chrono::milliseconds patience);
  ~SqliteUserDefaults() override;

  // False, with a line on the system log, when the file cannot be opened; true also when another
  // process keeps it locked.
  bool Open();

  Value ObjectForKey(const std::string& key) const override;
  void SetObject(const std::string& key, const Value& value) override;
  void RemoveObject(const std::string& key) override;
  void RemoveObjectsWithPrefix(const std::string& prefix) override;
  std::vector<std::string> KeysWithPrefix(const std::string& prefix) const override;

 private:
  void BeforeFork() override;
  void AfterFork() override;

  class Session;

  const std::shared_ptr<SystemLog> systemLog_;
  mutable std::mutex mutex_;  // guards what follows
  mutable SqliteUserDefaultsStore store_;
};

}  // namespace Platform
