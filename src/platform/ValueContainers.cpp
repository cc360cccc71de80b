#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/ValueInternals.h"

namespace Platform {
namespace {

void RequireNoneAbsent(std::span<const Value> items) {
  if (std::any_of(items.begin(), items.end(), [](const Value& item) { return item.IsAbsent(); })) {
    throw std::invalid_argument("Platform::Value: an array holds no absent elements");
  }
}

}  // namespace

Value Value::Array() { return ValueInternals::Empty(ValueKind::Array); }

Value Value::Array(std::initializer_list<Value> items) {
  return FromVector(std::vector<Value>(items));
}

Value Value::FromVector(std::vector<Value> items) {
  RequireNoneAbsent(items);
  if (items.empty()) return Array();
  return ValueInternals::Owning(new ValueInternals::Array(std::move(items)));
}

Value Value::Dictionary(std::size_t capacity) {
  Value dictionary = ValueInternals::Empty(ValueKind::Dictionary);
  if (capacity != 0) {
    ValueInternals::Unshare<ValueInternals::Dictionary>(dictionary).content.Reserve(capacity);
  }
  return dictionary;
}

std::size_t Value::Count() const noexcept {
  if (IsDictionary() && hasStorage_) {
    return ValueInternals::As<ValueInternals::Dictionary>(*this).content.Count();
  }
  return Items().size();
}

std::span<const Value> Value::Items() const noexcept {
  if (!IsArray() || !hasStorage_) return {};
  return ValueInternals::As<ValueInternals::Array>(*this).items;
}

const Value& Value::At(std::size_t index) const {
  const std::span<const Value> items = Items();
  if (index >= items.size()) throw std::out_of_range("Platform::Value: no such array element");
  return items[index];
}

void Value::Append(Value item) {
  if (!IsArray()) throw std::logic_error("Platform::Value: not an array");
  RequireNoneAbsent({&item, 1});
  ValueInternals::Unshare<ValueInternals::Array>(*this, std::vector<Value>{})
      .items.push_back(std::move(item));
}

const Value& Value::Get(const Value& key) const {
  if (!IsDictionary() || !hasStorage_) return AbsentValue();
  const Value* found = ValueInternals::As<ValueInternals::Dictionary>(*this).content.Find(key);
  return found != nullptr ? *found : AbsentValue();
}

const Value& Value::GetByText(std::string_view key) const noexcept {
  if (!IsDictionary() || !hasStorage_) return AbsentValue();
  const Value* found = ValueInternals::As<ValueInternals::Dictionary>(*this).content.Find(key);
  return found != nullptr ? *found : AbsentValue();
}

void Value::Set(Value key, Value value) {
  if (!IsDictionary()) throw std::logic_error("Platform::Value: not a dictionary");
  if (key.IsAbsent()) throw std::invalid_argument("Platform::Value: the key is absent");
  if (value.IsAbsent()) {
    Remove(std::move(key));
    return;
  }
  ValueInternals::Unshare<ValueInternals::Dictionary>(*this).content.Set(std::move(key),
                                                                         std::move(value));
}

void Value::Remove(Value key) {
  if (!IsDictionary()) throw std::logic_error("Platform::Value: not a dictionary");
  if (Get(key).IsAbsent()) return;
  ValueInternals::Unshare<ValueInternals::Dictionary>(*this).content.Remove(key);
}

std::vector<Value> Value::Keys() const {
  std::vector<Value> keys;
  keys.reserve(Count());
  for (const DictionaryEntry& entry : Entries()) keys.push_back(entry.key);
  return keys;
}

DictionaryEntries Value::Entries() const noexcept {
  if (!IsDictionary() || !hasStorage_) return DictionaryEntries();
  return DictionaryEntries(
      std::as_const(ValueInternals::As<ValueInternals::Dictionary>(*this).content).Slots());
}

}  // namespace Platform
