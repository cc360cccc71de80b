#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

enum class ValueKind : std::uint8_t {
  Absent,
  String,
  Number,
  Boolean,
  Array,
  Dictionary,
  Null,
  Data,
  Object,
};

// The storage that a number was made with (the platform's CFNumberType values).
enum class NumberType : int {
  SInt8 = 1,
  SInt16 = 2,
  SInt32 = 3,
  SInt64 = 4,
  Float32 = 5,
  Float64 = 6,
  Char = 7,
  Short = 8,
  Int = 9,
  Long = 10,
  LongLong = 11,
  Float = 12,
  Double = 13,
  CFIndex = 14,
  NSInteger = 15,
  CGFloat = 16,
};

// True for the storage types of numbers with a fraction.
constexpr bool IsFloatingPoint(NumberType type) {
  switch (type) {
    case NumberType::Float32:
    case NumberType::Float64:
    case NumberType::Float:
    case NumberType::Double:
    case NumberType::CGFloat:
      return true;
    default:
      return false;
  }
}

class DictionaryEntries;
struct DictionaryEntry;

// A platform object that is none of the kinds the conversions know: a date, say. Objects are shared
// between values and threads, so they must not change once they are in a value.
class QEXCORE_API Object {
 public:
  virtual ~Object();

  // A short text for people; UTF-8.
  virtual std::string Description() const = 0;

  // Must be an equivalence: two objects that are equal give the same Hash().
  virtual bool Equals(const Object& other) const = 0;
  virtual std::size_t Hash() const noexcept;

 protected:
  Object() = default;
  Object(const Object&) = default;
  Object& operator=(const Object&) = default;
};

// An integer that holds a number; characters and bool are no numbers.
template <class T>
concept PlainInteger =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
    !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> && !std::same_as<T, char16_t> &&
    !std::same_as<T, char32_t> && sizeof(T) <= sizeof(std::int64_t);

// Any platform value, or the absence of one.
//
// Values are copied by assignment and never shared by reference: large content lies in storage that
// copies share until one of them is changed. A copy is cheap and may go to another thread; one
// Value object belongs to one thread at a time while it is being changed. Copying, destroying,
// comparing and describing use no stack for nesting, however deep.
//
// Reading asks no questions: what is not of the kind asked for reads as empty, 0 or absent.
// References, views and spans that a Value hands out hold until it is changed or destroyed.
//
// Literals: `{{"sku", "A-17"}, {"count", 2}}` is a dictionary, `Value::Array({1, 2})` an array and
// `{}` is absent.
class QEXCORE_API Value {
 public:
  // Absent.
  constexpr Value() noexcept : payload_{} {}

  // Strings. Text is UTF-8, taken as it is and not checked; it may hold zero bytes (but a
  // `const char*` ends at the first). A null pointer and an empty optional give an absent value.
  Value(const char* text);                        // NOLINT(google-explicit-constructor)
  Value(const std::string& text);                 // NOLINT(google-explicit-constructor)
  Value(std::string_view text);                   // NOLINT(google-explicit-constructor)
  Value(const std::optional<std::string>& text);  // NOLINT(google-explicit-constructor)
  Value(std::nullptr_t) = delete;

  // Booleans: from exactly a bool.
  template <std::same_as<bool> T>
  Value(T boolean) noexcept  // NOLINT(google-explicit-constructor)
      : payload_{.boolean = boolean}, kind_(ValueKind::Boolean) {}

  // Numbers. The storage type is the narrowest of SInt8, SInt16, SInt32 and SInt64 that holds every
  // value of the C++ type; an unsigned 64-bit number beyond SInt64 becomes a Float64.
  template <PlainInteger T>
  Value(T number) noexcept  // NOLINT(google-explicit-constructor)
      : Value(NumberOf(number)) {}
  Value(float number) noexcept;   // NOLINT(google-explicit-constructor)
  Value(double number) noexcept;  // NOLINT(google-explicit-constructor)

  // A dictionary. Of two equal keys the later one's value stays; an entry whose value is absent is
  // left out; an absent key throws std::invalid_argument.
  Value(std::initializer_list<DictionaryEntry> entries);  // NOLINT(google-explicit-constructor)

  Value(const Value& other) noexcept;
  Value(Value&& other) noexcept;  // leaves `other` absent
  Value& operator=(const Value& other) noexcept;
  Value& operator=(Value&& other) noexcept;
  ~Value();

  // A number of a storage type of the caller's choice, which may also be none of the platform's. A
  // number that the type cannot hold loses its high bits (an integer) or becomes the nearest that
  // it can (a double in an integer type; not-a-number becomes 0). Types outside the
  // platform's list hold 64-bit integers.
  template <PlainInteger T>
  static Value Number(NumberType type, T number) noexcept {
    return std::is_signed_v<T> ? OfSigned(type, static_cast<std::int64_t>(number))
                               : OfUnsigned(type, static_cast<std::uint64_t>(number));
  }
  static Value Number(NumberType type, double number) noexcept;

  // The null marker: a value that says "nothing", unlike an absent one.
  static Value Null() noexcept;

  static Value FromData(std::vector<std::uint8_t> bytes);

  // An empty pointer gives an absent value.
  static Value FromObject(std::shared_ptr<const Object> object);

  // Arrays hold no absent elements: one among `items` throws std::invalid_argument.
  static Value Array();
  static Value Array(std::initializer_list<Value> items);
  static Value FromVector(std::vector<Value> items);

  // An empty dictionary, with room for `capacity` entries.
  static Value Dictionary(std::size_t capacity = 0);

  ValueKind Kind() const noexcept { return kind_; }
  bool IsAbsent() const noexcept { return kind_ == ValueKind::Absent; }
  bool IsString() const noexcept { return kind_ == ValueKind::String; }
  bool IsNumber() const noexcept { return kind_ == ValueKind::Number; }  // false for a boolean
  bool IsBoolean() const noexcept { return kind_ == ValueKind::Boolean; }
  bool IsArray() const noexcept { return kind_ == ValueKind::Array; }
  bool IsDictionary() const noexcept { return kind_ == ValueKind::Dictionary; }
  bool IsNull() const noexcept { return kind_ == ValueKind::Null; }
  bool IsData() const noexcept { return kind_ == ValueKind::Data; }
  bool IsObject() const noexcept { return kind_ == ValueKind::Object; }

  // A string's text, copied or in place; empty for any other kind.
  std::string AsString() const { return std::string(AsStringView()); }
  std::string_view AsStringView() const noexcept;

  // The storage type of a number; empty for any other kind, booleans included.
  std::optional<NumberType> StorageType() const noexcept;

  // A number or a boolean (1 or 0), read as the type asked for; 0 for any other kind. An integer
  // read narrower keeps its low bits. A double read as an integer loses its fraction and becomes
  // the nearest extreme where it does not fit; not-a-number becomes 0. Every number but zero is
  // true, not-a-number included.
  bool AsBool() const noexcept;
  std::int32_t AsInt32() const noexcept;
  std::int64_t AsInt64() const noexcept;
  float AsFloat() const noexcept;
  double AsDouble() const noexcept;

  // A byte buffer's bytes; empty for any other kind.
  const std::vector<std::uint8_t>& AsData() const noexcept;

  // The object held, or empty for any other kind, and for an object that is no T.
  std::shared_ptr<const Object> AsObject() const noexcept;
  template <class T>
  std::shared_ptr<const T> AsObjectOf() const noexcept {
    return std::dynamic_pointer_cast<const T>(AsObject());
  }

  // How many elements an array, or entries a dictionary, has; 0 for any other kind.
  std::size_t Count() const noexcept;

  // An array's elements in order; none for any other kind.
  std::span<const Value> Items() const noexcept;

  // An array's element; throws std::out_of_range when there is none of that index.
  const Value& At(std::size_t index) const;

  // Appends to an array. Throws std::invalid_argument for an absent item and std::logic_error when
  // this is no array; the array then stays as it was.
  void Append(Value item);

  // What a dictionary holds under `key`, or an absent value. Any value may be a key; keys are equal
  // as Equals() says. Takes constant time.
  const Value& Get(const Value& key) const;
  template <class Text>
  requires std::convertible_to<const Text&, std::string_view>
  const Value& Get(const Text& key) const noexcept {
    if constexpr (std::is_pointer_v<Text>) {
      if (key == nullptr) return AbsentValue();
    }
    return GetByText(key);
  }

  // Stores `value` under `key`; a new key goes behind the others, a known one keeps its place. An
  // absent value removes the key instead. Throws std::invalid_argument for an absent key and
  // std::logic_error when this is no dictionary; the dictionary then stays as it was.
  void Set(Value key, Value value);

  // Removes `key` if it is there. Throws std::logic_error when this is no dictionary.
  void Remove(Value key);

  // A dictionary's keys, and its entries, in the order in which the keys were first set; none for
  // any other kind.
  std::vector<Value> Keys() const;
  DictionaryEntries Entries() const noexcept;

  // True when both are of one kind and have the same content. Numbers are compared by value,
  // whatever their storage type, and not-a-number equals itself; a boolean equals no number; the
  // order of a dictionary's entries does not count; objects are asked.
  bool Equals(const Value& other) const;
  friend bool operator==(const Value& left, const Value& right) { return left.Equals(right); }

  // Text for people and log lines, in well-formed UTF-8. A string gives itself; containers give
  // one line, with the strings in them quoted and control characters escaped. What lies more than
  // 64 containers deep, or beyond a mebibyte, is shown as "...".
  std::string Description() const;

 private:
  friend struct ValueInternals;
  struct Storage;  // counted content, shared between copies

  static constexpr std::size_t kMaxTextInPlace = 16;

  union Payload {
    std::int64_t integer;
    double real;
    bool boolean;
    Storage* storage;
    char text[kMaxTextInPlace];
  };

  template <PlainInteger T>
  static Value NumberOf(T number) noexcept {
    constexpr std::size_t width = sizeof(T) * (std::is_signed_v<T> ? 1 : 2);
    if constexpr (width == 1) return Number(NumberType::SInt8, number);
    if constexpr (width == 2) return Number(NumberType::SInt16, number);
    if constexpr (width == 4) return Number(NumberType::SInt32, number);
    if constexpr (width == 8) return Number(NumberType::SInt64, number);
    if constexpr (width > 8) return OfLargeUnsigned(number);
  }

  static Value OfSigned(NumberType type, std::int64_t number) noexcept;
  static Value OfUnsigned(NumberType type, std::uint64_t number) noexcept;
  static Value OfLargeUnsigned(std::uint64_t number) noexcept;
  static const Value& AbsentValue() noexcept;

  const Value& GetByText(std::string_view key) const noexcept;

  Payload payload_;
  ValueKind kind_ = ValueKind::Absent;
  bool hasStorage_ = false;
  std::uint8_t textLength_ = 0;  // of a string that lies in place
  NumberType numberType_{};
};

// One entry of a dictionary.
struct QEXCORE_API DictionaryEntry {
  DictionaryEntry(Value entryKey, Value entryValue)
      : key(std::move(entryKey)), value(std::move(entryValue)) {}

  Value key;
  Value value;
};

// The entries of a dictionary, to be walked with a range-based for. Holds as long as the Value it
// came from is neither changed nor destroyed.
class QEXCORE_API DictionaryEntries {
 public:
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = DictionaryEntry;
    using difference_type = std::ptrdiff_t;
    using pointer = const DictionaryEntry*;
    using reference = const DictionaryEntry&;

    Iterator() = default;
    Iterator(pointer position, pointer end) : position_(position), end_(end) { SkipRemoved(); }

    reference operator*() const { return *position_; }
    pointer operator->() const { return position_; }
    Iterator& operator++() {
      ++position_;
      SkipRemoved();
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(const Iterator& left, const Iterator& right) {
      return left.position_ == right.position_;
    }

   private:
    void SkipRemoved() {
      while (position_ != end_ && position_->key.IsAbsent()) ++position_;
    }

    pointer position_ = nullptr;
    pointer end_ = nullptr;
  };

  DictionaryEntries() = default;
  explicit DictionaryEntries(std::span<const DictionaryEntry> slots) : slots_(slots) {}

  Iterator begin() const { return {slots_.data(), slots_.data() + slots_.size()}; }
  Iterator end() const {
    const DictionaryEntry* last = slots_.data() + slots_.size();
    return {last, last};
  }

 private:
  std::span<const DictionaryEntry> slots_;
};

}  // namespace Platform
