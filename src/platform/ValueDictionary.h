#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// What a dictionary value holds: its entries in the order in which their keys came, and an index
// over them once there are more than a few.
class ValueDictionary {
 public:
  void Reserve(std::size_t capacity);

  std::size_t Count() const { return count_; }

  // Entries in order. One that has been removed leaves a slot with an absent key.
  std::span<const DictionaryEntry> Slots() const { return slots_; }
  std::span<DictionaryEntry> Slots() { return slots_; }

  // Null when there is no such key.
  const Value* Find(const Value& key) const;
  const Value* Find(std::string_view key) const;

  // Neither may be absent.
  void Set(Value key, Value value);
  void Remove(const Value& key);

 private:
  // Half of the buckets at least are free. A removed slot keeps its bucket until the next Rebuild.
  struct Bucket {
    std::uint32_t hash = 0;
    std::uint32_t slotNumber = 0;  // counted from 1; 0 is a free bucket
  };

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  static constexpr std::size_t kMostWithoutIndex = 8;

  std::size_t Position(const Value& key) const;
  std::size_t PositionOfText(std::string_view text) const;
  template <class Matches>
  std::size_t PositionInIndex(std::uint64_t hash, const Matches& matches) const;

  void Add(Value key, Value value);
  void AddToIndex(std::uint64_t hash, std::size_t position);

  // Drops removed slots and makes an index for `capacity` entries, if that many need one.
  void Rebuild(std::size_t capacity);

  std::vector<DictionaryEntry> slots_;
  std::size_t count_ = 0;
  std::vector<Bucket> index_;
};

}  // namespace Platform
