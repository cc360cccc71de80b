#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"
#include "platform/ValueDictionary.h"

namespace Platform {

// Content that does not fit into a Value, shared between its copies. Whoever drops the last owner
// deletes it.
struct Value::Storage {
  explicit Storage(ValueKind kindOfContent) : kind(kindOfContent) {}

  std::atomic<std::size_t> owners{1};
  const ValueKind kind;
};

// The inside of values, for the sources that implement them.
struct ValueInternals {
  // The text's bytes follow the object.
  struct Text final : Value::Storage {
    explicit Text(std::size_t textLength) : Storage(ValueKind::String), length(textLength) {}
    char* Bytes() { return reinterpret_cast<char*>(this + 1); }

    const std::size_t length;
  };

  struct Container : Value::Storage {
    using Storage::Storage;
    Container* nextDead = nullptr;  // chains what is being destroyed
  };

  struct Array final : Container {
    explicit Array(std::vector<Value> arrayItems)
        : Container(ValueKind::Array), items(std::move(arrayItems)) {}
    Array(const Array& other) : Array(other.items) {}

    std::vector<Value> items;
  };

  struct Dictionary final : Container {
    Dictionary() : Container(ValueKind::Dictionary) {}
    Dictionary(const Dictionary& other)
        : Container(ValueKind::Dictionary), content(other.content) {}

    ValueDictionary content;
  };

  struct Data final : Value::Storage {
    explicit Data(std::vector<std::uint8_t> dataBytes)
        : Storage(ValueKind::Data), bytes(std::move(dataBytes)) {}

    const std::vector<std::uint8_t> bytes;
  };

  struct Other final : Value::Storage {
    explicit Other(std::shared_ptr<const Object> otherObject)
        : Storage(ValueKind::Object), object(std::move(otherObject)) {}

    const std::shared_ptr<const Object> object;
  };

  static const Value::Storage* StorageOf(const Value& value) {
    return value.hasStorage_ ? value.payload_.storage : nullptr;
  }

  // The storage of a value that has one of this type.
  template <class T>
  static T& As(const Value& value) {
    return *static_cast<T*>(value.payload_.storage);
  }

  static std::string_view TextOf(const Value& value) {
    if (value.kind_ != ValueKind::String) return {};
    if (!value.hasStorage_) return {value.payload_.text, value.textLength_};
    Text& text = As<Text>(value);
    return {text.Bytes(), text.length};
  }

  static bool IsReal(const Value& number) { return IsFloatingPoint(number.numberType_); }
  static std::int64_t IntegerOf(const Value& number) { return number.payload_.integer; }
  static double RealOf(const Value& number) { return number.payload_.real; }

  static void StoreInteger(Value& value, NumberType type, std::int64_t integer);
  static void StoreReal(Value& value, NumberType type, double real);

  // Copies `text` into an absent value.
  static void StoreText(Value& value, std::string_view text);

  // A value of `kind` without content.
  static Value Empty(ValueKind kind);

  // A value that owns `storage`.
  static Value Owning(Value::Storage* storage);

  // An array's or a dictionary's storage, ready to be changed: no other value shares it.
  template <class T, class... Arguments>
  static T& Unshare(Value& value, Arguments&&... emptyContent);

  // Gives up a value's part of its storage. Takes no stack for nesting and no memory.
  static void Release(Value& value) noexcept;

 private:
  static void ReleaseOrChain(Value& value, Container*& dead) noexcept;
  static void ReleaseChildren(Container& container, Container*& dead) noexcept;
  static void Delete(Value::Storage* storage) noexcept;
};

template <class T, class... Arguments>
T& ValueInternals::Unshare(Value& value, Arguments&&... emptyContent) {
  if (!value.hasStorage_) {
    value = Owning(new T(std::forward<Arguments>(emptyContent)...));
  } else if (value.payload_.storage->owners.load(std::memory_order_acquire) != 1) {
    value = Owning(new T(As<T>(value)));
  }
  return As<T>(value);
}

}  // namespace Platform
