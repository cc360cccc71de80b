#include "platform/ValueInternals.h"

#include <cstring>
#include <new>

namespace Platform {

void ValueInternals::StoreText(Value& value, std::string_view text) {
  char* destination = value.payload_.text;
  if (text.size() > Value::kMaxTextInPlace) {
    auto* storage = new (::operator new(sizeof(Text) + text.size())) Text(text.size());
    destination = storage->Bytes();
    value.payload_.storage = storage;
    value.hasStorage_ = true;
  } else {
    value.textLength_ = static_cast<std::uint8_t>(text.size());
  }
  if (!text.empty()) std::memcpy(destination, text.data(), text.size());
  value.kind_ = ValueKind::String;
}

Value ValueInternals::Empty(ValueKind kind) {
  Value value;
  value.kind_ = kind;
  return value;
}

Value ValueInternals::Owning(Value::Storage* storage) {
  Value value;
  value.payload_.storage = storage;
  value.hasStorage_ = true;
  value.kind_ = storage->kind;
  return value;
}

void ValueInternals::Release(Value& value) noexcept {
  Container* dead = nullptr;
  ReleaseOrChain(value, dead);
  while (dead != nullptr) {
    Container& container = *dead;
    dead = container.nextDead;
    ReleaseChildren(container, dead);
    Delete(&container);
  }
}

void ValueInternals::ReleaseOrChain(Value& value, Container*& dead) noexcept {
  if (!value.hasStorage_) return;
  value.hasStorage_ = false;
  Value::Storage* storage = value.payload_.storage;
  if (storage->owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  if (storage->kind == ValueKind::Array || storage->kind == ValueKind::Dictionary) {
    auto* container = static_cast<Container*>(storage);
    container->nextDead = dead;
    dead = container;
  } else {
    Delete(storage);
  }
}

void ValueInternals::ReleaseChildren(Container& container, Container*& dead) noexcept {
  if (container.kind == ValueKind::Array) {
    for (Value& item : static_cast<Array&>(container).items) ReleaseOrChain(item, dead);
    return;
  }
  for (DictionaryEntry& entry : static_cast<Dictionary&>(container).content.Slots()) {
    ReleaseOrChain(entry.key, dead);
    ReleaseOrChain(entry.value, dead);
  }
}

void ValueInternals::Delete(Value::Storage* storage) noexcept {
  switch (storage->kind) {
    case ValueKind::String: {
      auto* text = static_cast<Text*>(storage);
      text->~Text();
      ::operator delete(text);
      break;
    }
    case ValueKind::Array:
      delete static_cast<Array*>(storage);
      break;
    case ValueKind::Dictionary:
      delete static_cast<Dictionary*>(storage);
      break;
    case ValueKind::Data:
      delete static_cast<Data*>(storage);
      break;
    case ValueKind::Object:
      delete static_cast<Other*>(storage);
      break;
    case ValueKind::Absent:
    case ValueKind::Number:
    case ValueKind::Boolean:
    case ValueKind::Null:
      break;
  }
}

}  // namespace Platform
