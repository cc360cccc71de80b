#include "platform/ValueDictionary.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/ValueHash.h"
#include "platform/ValueInternals.h"

namespace Platform {
namespace {

bool IsText(const Value& key, std::string_view text) {
  return key.IsString() && ValueInternals::TextOf(key) == text;
}

}  // namespace

void ValueDictionary::Reserve(std::size_t capacity) {
  slots_.reserve(capacity);
  if (capacity > kMostWithoutIndex) Rebuild(capacity);
}

const Value* ValueDictionary::Find(const Value& key) const {
  const std::size_t position = Position(key);
  return position == kNone ? nullptr : &slots_[position].value;
}

const Value* ValueDictionary::Find(std::string_view key) const {
  const std::size_t position = PositionOfText(key);
  return position == kNone ? nullptr : &slots_[position].value;
}

void ValueDictionary::Set(Value key, Value value) {
  const std::size_t position = Position(key);
  if (position == kNone) {
    Add(std::move(key), std::move(value));
  } else {
    slots_[position].value = std::move(value);
  }
}

void ValueDictionary::Remove(const Value& key) {
  const std::size_t position = Position(key);
  if (position == kNone) return;
  slots_[position] = DictionaryEntry({}, {});
  --count_;
  if (slots_.size() > 2 * count_ + kMostWithoutIndex) Rebuild(count_);
}

std::size_t ValueDictionary::Position(const Value& key) const {
  if (key.IsString()) return PositionOfText(ValueInternals::TextOf(key));
  const auto matches = [&key](const Value& other) { return other.Equals(key); };
  if (!index_.empty()) return PositionInIndex(HashOf(key), matches);
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (!slots_[i].key.IsAbsent() && matches(slots_[i].key)) return i;
  }
  return kNone;
}

std::size_t ValueDictionary::PositionOfText(std::string_view text) const {
  if (!index_.empty()) {
    return PositionInIndex(HashOfText(text),
                           [text](const Value& other) { return IsText(other, text); });
  }
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (IsText(slots_[i].key, text)) return i;
  }
  return kNone;
}

template <class Matches>
std::size_t ValueDictionary::PositionInIndex(std::uint64_t hash, const Matches& matches) const {
  const std::size_t mask = index_.size() - 1;
  const auto shortHash = static_cast<std::uint32_t>(hash);
  for (std::size_t i = hash & mask; index_[i].slotNumber != 0; i = (i + 1) & mask) {
    if (index_[i].hash != shortHash) continue;
    const std::size_t position = index_[i].slotNumber - 1;
    const Value& key = slots_[position].key;
    if (!key.IsAbsent() && matches(key)) return position;
  }
  return kNone;
}

void ValueDictionary::Add(Value key, Value value) {
  const bool needsIndex = slots_.size() >= kMostWithoutIndex;
  if (needsIndex && (slots_.size() + 1) * 2 > index_.size()) {
    Rebuild(2 * (count_ + 1));
  }
  const std::uint64_t hash = index_.empty() ? 0 : HashOf(key);
  slots_.emplace_back(std::move(key), std::move(value));
  ++count_;
  if (!index_.empty()) AddToIndex(hash, slots_.size() - 1);
}

void ValueDictionary::AddToIndex(std::uint64_t hash, std::size_t position) {
  const std::size_t mask = index_.size() - 1;
  std::size_t i = hash & mask;
  while (index_[i].slotNumber != 0) i = (i + 1) & mask;
  index_[i] = {static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(position + 1)};
}

void ValueDictionary::Rebuild(std::size_t capacity) {
  std::vector<Bucket> buckets;
  if (capacity > kMostWithoutIndex) buckets.resize(std::bit_ceil(2 * capacity));
  // Nothing below fails, so that slots and index stay true to each other.
  index_.swap(buckets);
  std::erase_if(slots_, [](const DictionaryEntry& entry) { return entry.key.IsAbsent(); });
  if (index_.empty()) return;
  for (std::size_t i = 0; i < slots_.size(); ++i) AddToIndex(HashOf(slots_[i].key), i);
}

}  // namespace Platform
