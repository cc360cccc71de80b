#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// Values of user defaults in memory, absent ones included, within bounds: what goes beyond them is
// forgotten. Belongs to one thread at a time.
class SqliteUserDefaultsCache {
 public:
  // What is known about the key, or null. Holds until the next change.
  const Value* Find(const std::string& key) const;

  // `size` is about how many bytes the value takes.
  void Put(const std::string& key, const Value& value, std::size_t size);

  // Forgets everything, in constant time.
  void Invalidate() { ++epoch_; }

 private:
  struct Entry {
    Value value;
    std::size_t size = 0;
    std::uint64_t epoch = 0;
  };

  std::unordered_map<std::string, Entry> entries_;  // those of former epochs count as forgotten
  std::size_t size_ = 0;
  std::uint64_t epoch_ = 0;
};

}  // namespace Platform
