#include "platform/linux/SqliteUserDefaultsForkGuard.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include <pthread.h>

namespace Platform {

struct SqliteUserDefaultsForkHandlers {
  std::mutex mutex;
  std::vector<SqliteUserDefaultsForkGuard*> guards;

  static SqliteUserDefaultsForkHandlers& Get() {
    // Never destroyed: the process may fork until it ends.
    static auto* handlers = [] {
      ::pthread_atfork([] { Get().BeforeFork(); }, [] { Get().AfterFork(); },
                       [] { Get().AfterFork(); });
      return new SqliteUserDefaultsForkHandlers;
    }();
    return *handlers;
  }

  void BeforeFork() {
    mutex.lock();
    for (SqliteUserDefaultsForkGuard* guard : guards) guard->BeforeFork();
  }

  void AfterFork() {
    for (SqliteUserDefaultsForkGuard* guard : guards) guard->AfterFork();
    mutex.unlock();
  }
};

SqliteUserDefaultsForkGuard::SqliteUserDefaultsForkGuard() = default;

void SqliteUserDefaultsForkGuard::BeginTakingPart() {
  auto& handlers = SqliteUserDefaultsForkHandlers::Get();
  const std::lock_guard lock(handlers.mutex);
  handlers.guards.push_back(this);
}

void SqliteUserDefaultsForkGuard::EndTakingPart() {
  auto& handlers = SqliteUserDefaultsForkHandlers::Get();
  const std::lock_guard lock(handlers.mutex);
  std::erase(handlers.guards, this);
}

}  // namespace Platform
