#include "QEXCore_iOS/Platform/Value.h"

#include <utility>

#include "platform/ValueInternals.h"

namespace Platform {

Object::~Object() = default;

// Equal objects must hash alike, and nothing is known about what makes them equal.
std::size_t Object::Hash() const noexcept { return 0; }

Value::Value(const char* text) : Value() {
  if (text != nullptr) ValueInternals::StoreText(*this, text);
}

Value::Value(const std::string& text) : Value(std::string_view(text)) {}

Value::Value(std::string_view text) : Value() { ValueInternals::StoreText(*this, text); }

Value::Value(const std::optional<std::string>& text) : Value() {
  if (text) ValueInternals::StoreText(*this, *text);
}

Value::Value(std::initializer_list<DictionaryEntry> entries) : Value(Dictionary(entries.size())) {
  for (const auto& [key, value] : entries) Set(key, value);
}

Value::Value(const Value& other) noexcept
    : payload_(other.payload_),
      kind_(other.kind_),
      hasStorage_(other.hasStorage_),
      textLength_(other.textLength_),
      numberType_(other.numberType_) {
  if (hasStorage_) payload_.storage->owners.fetch_add(1, std::memory_order_relaxed);
}

Value::Value(Value&& other) noexcept
    : payload_(other.payload_),
      kind_(std::exchange(other.kind_, ValueKind::Absent)),
      hasStorage_(std::exchange(other.hasStorage_, false)),
      textLength_(other.textLength_),
      numberType_(other.numberType_) {}

Value& Value::operator=(const Value& other) noexcept {
  *this = Value(other);
  return *this;
}

Value& Value::operator=(Value&& other) noexcept {
  // What this held goes last: `other` may lie inside it.
  Value taken(std::move(other));
  std::swap(payload_, taken.payload_);
  std::swap(kind_, taken.kind_);
  std::swap(hasStorage_, taken.hasStorage_);
  std::swap(textLength_, taken.textLength_);
  std::swap(numberType_, taken.numberType_);
  return *this;
}

Value::~Value() {
  if (hasStorage_) ValueInternals::Release(*this);
}

Value Value::Null() noexcept { return ValueInternals::Empty(ValueKind::Null); }

Value Value::FromData(std::vector<std::uint8_t> bytes) {
  return ValueInternals::Owning(new ValueInternals::Data(std::move(bytes)));
}

Value Value::FromObject(std::shared_ptr<const Object> object) {
  if (!object) return {};
  return ValueInternals::Owning(new ValueInternals::Other(std::move(object)));
}

std::string_view Value::AsStringView() const noexcept { return ValueInternals::TextOf(*this); }

const std::vector<std::uint8_t>& Value::AsData() const noexcept {
  static const std::vector<std::uint8_t> empty;
  return IsData() ? ValueInternals::As<ValueInternals::Data>(*this).bytes : empty;
}

std::shared_ptr<const Object> Value::AsObject() const noexcept {
  if (!IsObject()) return nullptr;
  return ValueInternals::As<ValueInternals::Other>(*this).object;
}

const Value& Value::AbsentValue() noexcept {
  static const Value absent;
  return absent;
}

}  // namespace Platform
