#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"

namespace Platform {

class SqliteUserDefaults;

// User defaults in SQLite databases, one file for each suite. Two providers, in one process or in
// two, that name the same folders share what lies there.
class SqliteUserDefaultsProvider final : public UserDefaultsProvider {
 public:
  struct Folders {
    std::string application;  // holds the application's own user defaults, "standard.db"
    std::string shared;       // holds the suites, "<name>.db"
  };

  // How long an operation waits for another process that keeps a database locked.
  static constexpr std::chrono::milliseconds kDefaultPatience{2000};

  // Below the user's data folder: "<program>/user-defaults" and "user-defaults". Failures go to the
  // platform's log.
  SqliteUserDefaultsProvider();

  // Folders are made when they are first needed. An empty path is a folder that cannot be made.
  SqliteUserDefaultsProvider(Folders folders, std::shared_ptr<SystemLog> systemLog,
                             std::chrono::milliseconds patience = kDefaultPatience);
  ~SqliteUserDefaultsProvider() override;

  // Opens its file at the first operation, and tries again at each while that fails.
  std::shared_ptr<UserDefaults> Standard() override;

  bool SupportsSuites() const override { return true; }

  // The same object for a name on every call. Null when the name is empty or makes a file name of
  // more than 200 bytes, or when the file cannot be opened; a file that is merely locked can.
  std::shared_ptr<UserDefaults> OpenSuite(const std::string& name) override;

 private:
  std::shared_ptr<SqliteUserDefaults> Make(const std::string& folder,
                                           const std::string& file) const;

  const Folders folders_;
  const std::shared_ptr<SystemLog> systemLog_;
  const std::chrono::milliseconds patience_;
  const std::shared_ptr<SqliteUserDefaults> standard_;
  std::mutex mutex_;                                                   // guards what follows
  std::map<std::string, std::shared_ptr<SqliteUserDefaults>> suites_;  // by file name
};

}  // namespace Platform
