#include "platform/linux/SqliteUserDefaultsStore.h"

#include <array>
#include <ctime>

#include <errno.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/DirectoryCreation.h"
#include "platform/linux/FileErrors.h"

namespace Platform {
namespace {

using Failure = SqliteUserDefaultsError;

bool CannotBeUsed(const Failure& error) {
  return error.GetKind() == Failure::Kind::Damaged || error.GetKind() == Failure::Kind::Foreign;
}

std::string TimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  ::gmtime_r(&now, &utc);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &utc);
  return text.data();
}

std::string FreePath(const std::string& wanted) {
  std::string path = wanted;
  for (int number = 2; ::access(path.c_str(), F_OK) == 0; ++number) {
    path = wanted + "-" + std::to_string(number);
  }
  return path;
}

void Rename(const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0 && errno != ENOENT) throw Failure::OfSystem(errno);
}

}  // namespace

SqliteUserDefaultsStore::SqliteUserDefaultsStore(std::string folder, const std::string& file,
                                                 std::chrono::milliseconds patience)
    : folder_(std::move(folder)), path_(folder_ + "/" + file + ".db"), patience_(patience) {}

bool SqliteUserDefaultsStore::Open() {
  return Attempt(Task::Open, [] { return true; });
}

void SqliteUserDefaultsStore::Close() {
  database_.reset();
  generation_.reset();
  // A file of generations that is opened later may be another one.
  cacheGeneration_.reset();
}

const Value* SqliteUserDefaultsStore::FindCached(const std::string& key) const {
  if (!generation_ || cacheGeneration_ != generation_->Load()) return nullptr;
  return cache_.Find(key);
}

Value SqliteUserDefaultsStore::Read(const std::string& key) {
  Value value;
  const bool done = Attempt(Task::Read, [&] {
    const std::uint64_t before = generation_->Load();
    std::size_t size = 0;
    value = database_->Find(key, size);
    const std::uint64_t after = generation_->Load();
    if (IsReplaced()) return false;
    if (SqliteUserDefaultsGeneration::IsEven(before) && before == after) {
      BringCacheTo(before);
      cache_.Put(key, value, size);
    } else {
      EndAbandonedWrite(after);
    }
    return true;
  });
  return done ? value : Value();
}

std::vector<std::string> SqliteUserDefaultsStore::KeysWithPrefix(const std::string& prefix) {
  std::vector<std::string> keys;
  const bool done = Attempt(Task::Read, [&] {
    keys = database_->KeysWithPrefix(prefix);
    return !IsReplaced();
  });
  if (!done) keys.clear();
  return keys;
}

void SqliteUserDefaultsStore::Put(const std::string& key, const Value& value,
                                  const SqliteUserDefaultsBlob& blob) {
  Write([&] { database_->Put(key, blob); }, [&] { cache_.Put(key, value, blob.bytes.size()); });
}

void SqliteUserDefaultsStore::Remove(const std::string& key) {
  if (const Value* known = FindCached(key); known != nullptr && known->IsAbsent()) return;
  Write([&] { database_->Remove(key); }, [&] { cache_.Put(key, Value(), 0); });
}

void SqliteUserDefaultsStore::RemoveWithPrefix(const std::string& prefix) {
  Write([&] { database_->RemoveWithPrefix(prefix); }, [&] { cache_.Invalidate(); });
}

void SqliteUserDefaultsStore::Refuse(const std::string& key, std::string_view objection) {
  lines_.push_back(DescribeFileFailure("store a value in user defaults under", key, objection));
}

void SqliteUserDefaultsStore::Write(const std::function<void()>& change,
                                    const std::function<void()>& remember) {
  Attempt(Task::Write, [&] {
    write_.reset();
    try {
      change();
    } catch (...) {
      if (write_) generation_->EndWrite(write_->odd);
      throw;
    }
    const bool isOurs = write_ && generation_->EndWrite(write_->odd);
    if (IsReplaced()) return false;
    if (isOurs) {
      if (cacheGeneration_ == write_->before) cacheGeneration_ = write_->odd + 1;
      BringCacheTo(write_->odd + 1);
      remember();
    }
    return true;
  });
}

// The generation becomes odd before anything is committed, and even only behind that: were it even
// any sooner, a reader could take the old contents for those of the new generation. By then the
// next writer may be at work already, and the generation is his.
void SqliteUserDefaultsStore::BeginGeneration() { write_ = generation_->BeginWrite(); }

bool SqliteUserDefaultsStore::Attempt(Task task, const std::function<bool()>& work) {
  constexpr int kMaximumAttempts = 4;
  for (int attempt = 1; attempt <= kMaximumAttempts; ++attempt) {
    try {
      EnsureOpen();
      if (work()) {
        std::erase_if(reported_, [task](const auto& entry) { return entry.first == task; });
        return true;
      }
    } catch (const Failure& error) {
      if (!CannotBeUsed(error) || !ReplaceFile(error)) {
        Report(task, error.what());
        return task == Task::Open && error.GetKind() == Failure::Kind::Locked;
      }
    }
    Close();
  }
  Report(task, "the file is replaced again and again");
  return false;
}

void SqliteUserDefaultsStore::EnsureOpen() {
  if (database_ && process_ != ::getpid()) {
    // A process must not touch a connection that its parent opened, not even to close it.
    static_cast<void>(database_.release());
  }
  if (database_ && (IsReplaced() || HasMoved())) Close();
  if (database_) return;

  if (folder_.empty()) {
    throw Failure(Failure::Kind::Failed, "neither XDG_DATA_HOME nor HOME names a folder for it");
  }
  Close();
  if (const int failure = CreateDirectories(folder_, 0700)) throw Failure::OfSystem(failure);
  generation_ = std::make_unique<SqliteUserDefaultsGeneration>(path_ + "-generation", patience_);
  const SqliteUserDefaultsGeneration::Lock lock(*generation_, patience_);
  incarnation_ = generation_->Incarnation();
  process_ = ::getpid();
  database_ =
      std::make_unique<SqliteUserDefaultsDatabase>(path_, patience_, [this] { BeginGeneration(); });
}

// Asks only once in a while: the answer costs a tenth of a write.
bool SqliteUserDefaultsStore::HasMoved() {
  constexpr std::chrono::seconds kInterval{1};
  const auto now = std::chrono::steady_clock::now();
  if (now - lastLookAtPath_ < kInterval) return false;
  lastLookAtPath_ = now;
  return database_->HasMoved();
}

void SqliteUserDefaultsStore::BringCacheTo(std::uint64_t generation) {
  if (cacheGeneration_ == generation) return;
  cache_.Invalidate();
  cacheGeneration_ = generation;
}

// Makes the generation even again when its writer seems to have died: while it is odd every read
// goes to the file.
void SqliteUserDefaultsStore::EndAbandonedWrite(std::uint64_t generation) {
  if (SqliteUserDefaultsGeneration::IsEven(generation)) return;
  const bool stoodAlready = std::exchange(lastOddGeneration_, generation) == generation;
  if (!stoodAlready) return;
  // A writer that lives holds the others off, or is done with what counts.
  database_->TryWithoutWriters([&] { generation_->EndWrite(generation); });
}

bool SqliteUserDefaultsStore::ReplaceFile(const Failure& error) {
  database_.reset();
  try {
    const SqliteUserDefaultsGeneration::Lock lock(*generation_, patience_);
    if (IsReplaced()) return true;
    const std::string newName = MoveFileAside();
    generation_->BeginIncarnation();
    lines_.push_back(DescribeFileFailure("use user defaults", path_,
                                         std::string(error.what()) + "; they now are \"" + newName +
                                             "\" beside it, and start anew"));
    return true;
  } catch (const Failure& newFailure) {
    Report(Task::Open, newFailure.what());
    return false;
  }
}

std::string SqliteUserDefaultsStore::MoveFileAside() {
  const std::string newPath = FreePath(path_ + ".corrupt-" + TimeStamp());
  // First the log: one that stayed behind would be played into the file that comes next.
  Rename(path_ + "-wal", newPath + "-wal");
  Rename(path_, newPath);
  ::unlink((path_ + "-shm").c_str());
  return newPath.substr(newPath.rfind('/') + 1);
}

void SqliteUserDefaultsStore::Report(Task task, const std::string& reason) {
  constexpr std::array<std::string_view, 3> kActions = {"open", "read", "write"};
  if (!reported_.emplace(task, reason).second) return;
  const std::string action(kActions[static_cast<std::size_t>(task)]);
  lines_.push_back(DescribeFileFailure(action + " user defaults", path_, reason));
}

}  // namespace Platform
