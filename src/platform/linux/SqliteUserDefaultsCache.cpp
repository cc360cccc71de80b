#include "platform/linux/SqliteUserDefaultsCache.h"

namespace Platform {
namespace {

constexpr std::size_t kMaximumSize = std::size_t{16} << 20;
constexpr std::size_t kMaximumEntry = kMaximumSize / 8;
constexpr std::size_t kOverhead = 128;  // of an entry, beside key and value

}  // namespace

const Value* SqliteUserDefaultsCache::Find(const std::string& key) const {
  const auto found = entries_.find(key);
  return found != entries_.end() && found->second.epoch == epoch_ ? &found->second.value : nullptr;
}

void SqliteUserDefaultsCache::Put(const std::string& key, const Value& value, std::size_t size) {
  const std::size_t entrySize = key.size() + size + kOverhead;
  if (const auto known = entries_.find(key); known != entries_.end()) {
    size_ -= known->second.size;
    if (entrySize <= kMaximumEntry && size_ + entrySize <= kMaximumSize) {
      known->second = {value, entrySize, epoch_};
      size_ += entrySize;
      return;
    }
    entries_.erase(known);
  }
  if (entrySize > kMaximumEntry) return;
  if (size_ + entrySize > kMaximumSize) {
    entries_.clear();
    size_ = 0;
  }
  entries_.emplace(key, Entry{value, entrySize, epoch_});
  size_ += entrySize;
}

}  // namespace Platform
