#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "QEXCore_iOS/Platform/Value.h"
#include "platform/linux/SqliteUserDefaultsCache.h"
#include "platform/linux/SqliteUserDefaultsCodec.h"
#include "platform/linux/SqliteUserDefaultsDatabase.h"
#include "platform/linux/SqliteUserDefaultsError.h"
#include "platform/linux/SqliteUserDefaultsGeneration.h"

namespace Platform {

// One file of user defaults and what is known of it in memory. The file is opened when it is first
// needed; one that cannot be used is moved aside and makes room for a new one.
//
// Nothing here throws: an operation that fails finds or changes nothing. Each way of failing leaves
// one line for the log until an operation of that sort succeeds again. Belongs to one thread at a
// time.
class SqliteUserDefaultsStore {
 public:
  SqliteUserDefaultsStore(std::string folder, const std::string& file,
                          std::chrono::milliseconds patience);

  // True when the file is open, and also when another process keeps it locked for now.
  bool Open();

  // Lets go of the file, until the next operation.
  void Close();

  // The value if it is in memory and nobody has written since, else null. Holds until the next
  // operation.
  const Value* FindCached(const std::string& key) const;

  Value Read(const std::string& key);
  std::vector<std::string> KeysWithPrefix(const std::string& prefix);
  void Put(const std::string& key, const Value& value, const SqliteUserDefaultsBlob& blob);
  void Remove(const std::string& key);
  void RemoveWithPrefix(const std::string& prefix);

  // Leaves a line about a value that is not stored.
  void Refuse(const std::string& key, std::string_view objection);

  // The lines for the log that have come together.
  std::vector<std::string> TakeLines() { return std::exchange(lines_, {}); }

 private:
  enum class Task { Open, Read, Write };

  // Does the work on the open file. `work` gives false when the file was replaced meanwhile, and is
  // then done again on the new one.
  bool Attempt(Task task, const std::function<bool()>& work);

  // Writes, and then has the cache stand at the new generation. `remember` is called where the
  // cache may keep what was written.
  void Write(const std::function<void()>& change, const std::function<void()>& remember);

  void BeginGeneration();
  void EnsureOpen();
  bool HasMoved();
  bool IsReplaced() const { return generation_->Incarnation() != incarnation_; }
  void BringCacheTo(std::uint64_t generation);
  void EndAbandonedWrite(std::uint64_t generation);
  bool ReplaceFile(const SqliteUserDefaultsError& error);
  std::string MoveFileAside();
  void Report(Task task, const std::string& reason);

  const std::string folder_;
  const std::string path_;
  const std::chrono::milliseconds patience_;

  std::unique_ptr<SqliteUserDefaultsGeneration> generation_;
  std::unique_ptr<SqliteUserDefaultsDatabase> database_;
  std::uint64_t incarnation_ = 0;  // that `database_` is open on
  pid_t process_ = 0;              // that opened it
  std::chrono::steady_clock::time_point lastLookAtPath_;

  // The write that is being committed; nothing while none has come so far.
  std::optional<SqliteUserDefaultsGeneration::Write> write_;

  SqliteUserDefaultsCache cache_;
  std::optional<std::uint64_t> cacheGeneration_;  // at which the cache is true; always even
  std::uint64_t lastOddGeneration_ = 0;

  std::set<std::pair<Task, std::string>> reported_;
  std::vector<std::string> lines_;
};

}  // namespace Platform
