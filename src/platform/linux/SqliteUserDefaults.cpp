#include "platform/linux/SqliteUserDefaults.h"

#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/SqliteUserDefaultsCodec.h"

namespace Platform {

// The store for one operation, under the lock. What the operation leaves to be logged is logged
// when this goes, without the lock.
class SqliteUserDefaults::Session {
 public:
  explicit Session(const SqliteUserDefaults& owner) : owner_(owner), lock_(owner.mutex_) {}
  ~Session() {
    const std::vector<std::string> lines = owner_.store_.TakeLines();
    lock_.unlock();
    for (const std::string& line : lines) owner_.systemLog_->Write(line);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  SqliteUserDefaultsStore* operator->() const { return &owner_.store_; }

 private:
  const SqliteUserDefaults& owner_;
  std::unique_lock<std::mutex> lock_;
};

SqliteUserDefaults::SqliteUserDefaults(std::string folder, const std::string& file,
                                       std::shared_ptr<SystemLog> systemLog,
                                       std::chrono::milliseconds patience)
    : systemLog_(std::move(systemLog)), store_(std::move(folder), file, patience) {
  BeginTakingPart();
}

SqliteUserDefaults::~SqliteUserDefaults() { EndTakingPart(); }

bool SqliteUserDefaults::Open() { return Session(*this)->Open(); }

Value SqliteUserDefaults::ObjectForKey(const std::string& key) const {
  {
    const std::lock_guard lock(mutex_);
    if (const Value* known = store_.FindCached(key)) return *known;
  }
  return Session(*this)->Read(key);
}

void SqliteUserDefaults::SetObject(const std::string& key, const Value& value) {
  if (value.IsAbsent()) return RemoveObject(key);
  std::string_view objection;
  const std::optional<SqliteUserDefaultsBlob> blob = EncodeUserDefaultsValue(value, objection);
  const Session store(*this);
  if (blob) {
    store->Put(key, value, *blob);
  } else {
    store->Refuse(key, objection);
  }
}

void SqliteUserDefaults::RemoveObject(const std::string& key) { Session(*this)->Remove(key); }

void SqliteUserDefaults::RemoveObjectsWithPrefix(const std::string& prefix) {
  Session(*this)->RemoveWithPrefix(prefix);
}

std::vector<std::string> SqliteUserDefaults::KeysWithPrefix(const std::string& prefix) const {
  return Session(*this)->KeysWithPrefix(prefix);
}

void SqliteUserDefaults::BeforeFork() {
  mutex_.lock();
  store_.Close();
}

void SqliteUserDefaults::AfterFork() { mutex_.unlock(); }

}  // namespace Platform
