#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"
#include "platform/linux/SqliteUserDefaultsCodec.h"
#include "platform/linux/SqliteUserDefaultsPatience.h"

struct sqlite3;
struct sqlite3_stmt;

namespace Platform {

// One connection to a file of user defaults, with its statements prepared. Operations throw
// SqliteUserDefaultsError; a write happens between BeginWrite and CommitWrite. Belongs to one
// thread at a time, and to the process that opened it.
//
// The connection leaves the write-ahead log as it is when it closes: to merge it then would take
// long, and would touch the wrong files after these have been moved.
class SqliteUserDefaultsDatabase {
 public:
  // Opens the file and makes it when it is missing or empty. `patience` is how long this and every
  // later operation waits for a lock. `beforeCommit` is called in each write, at a point where no
  // other connection can write and nobody sees the change yet; it must not throw.
  SqliteUserDefaultsDatabase(const std::string& path, std::chrono::milliseconds patience,
                             std::function<void()> beforeCommit);
  ~SqliteUserDefaultsDatabase();
  SqliteUserDefaultsDatabase(const SqliteUserDefaultsDatabase&) = delete;
  SqliteUserDefaultsDatabase& operator=(const SqliteUserDefaultsDatabase&) = delete;

  // True when the file is no longer to be found under its path.
  bool HasMoved() const;

  // The value under `key`, or an absent one; the size of its blob in `size`.
  Value Find(std::string_view key, std::size_t& size);
  std::vector<std::string> KeysWithPrefix(const std::string& prefix);

  void Put(std::string_view key, const SqliteUserDefaultsBlob& blob);
  void Remove(std::string_view key);
  void RemoveWithPrefix(const std::string& prefix);

  // Calls `task` while no connection can write. False, at once, when one is writing.
  bool TryWithoutWriters(const std::function<void()>& task);

 private:
  struct Closer {
    void operator()(sqlite3* connection) const;
  };
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Connection = std::unique_ptr<sqlite3, Closer>;
  using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;
  class Execution;

  // Called by SQLite when a lock is taken, for the `tries`-th time; 0 ends the waiting.
  static int WaitForLock(void* database, int tries);
  static int CallBeforeCommit(void* database);

  void Connect(const std::string& path);
  void Harden();
  void CheckOrMakeContents();
  bool HoldsUserDefaults();
  void MakeContents();
  void PrepareStatements();
  Statement Prepare(std::string_view sql);
  void Execute(std::string_view sql);
  std::int64_t QueryInteger(std::string_view sql);
  void Check(int code);

  const std::function<void()> beforeCommit_;
  SqliteUserDefaultsPatience patience_;
  bool isPatient_ = true;
  Connection connection_;
  Statement find_;
  Statement keys_;
  Statement put_;
  Statement remove_;
  Statement removeRange_;
};

}  // namespace Platform
