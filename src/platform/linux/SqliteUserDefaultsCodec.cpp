#include "platform/linux/SqliteUserDefaultsCodec.h"

#include <bit>
#include <string>
#include <utility>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"

namespace Platform {
namespace {

constexpr std::uint8_t kVersion = 1;
constexpr std::size_t kUsualSize = 64;
constexpr std::size_t kMaximumDepth = UserDefaults::kMaximumDepth;

enum class Type : std::uint8_t {
  None = 0,
  String = 1,
  Number = 2,
  Boolean = 3,
  Data = 4,
  Date = 5,
  Array = 6,
  Dictionary = 7,
};

Type TypeOf(const Value& value) {
  switch (value.Kind()) {
    case ValueKind::String:
      return Type::String;
    case ValueKind::Number:
      return Type::Number;
    case ValueKind::Boolean:
      return Type::Boolean;
    case ValueKind::Data:
      return Type::Data;
    case ValueKind::Array:
      return Type::Array;
    case ValueKind::Dictionary:
      return Type::Dictionary;
    case ValueKind::Object:
      return value.AsObjectOf<Date>() ? Type::Date : Type::None;
    case ValueKind::Absent:
    case ValueKind::Null:
      return Type::None;
  }
  return Type::None;
}

class Encoder {
 public:
  bool Encode(const Value& root) {
    bytes_.reserve(kUsualSize);
    bytes_.push_back(kVersion);
    bool accepted = WriteContent(root, TypeOf(root));
    while (accepted && !containers_.empty()) accepted = ContinueContainer();
    if (accepted && bytes_.size() > kMaximumUserDefaultsBlob) return RefuseSize();
    return accepted;
  }

  std::vector<std::uint8_t> TakeBytes() { return std::move(bytes_); }
  std::string_view Objection() const { return objection_; }

 private:
  // A container whose elements are being written; one of the two ranges is empty.
  struct Container {
    std::span<const Value> items;
    DictionaryEntries::Iterator entry;
    DictionaryEntries::Iterator lastEntry;
  };

  bool Refuse(std::string_view objection) {
    objection_ = objection;
    return false;
  }
  bool RefuseSize() { return Refuse("it is too large"); }

  bool ContinueContainer() {
    Container& container = containers_.back();
    const Value* element = nullptr;
    if (!container.items.empty()) {
      element = &container.items.front();
      container.items = container.items.subspan(1);
    } else if (container.entry != container.lastEntry) {
      const DictionaryEntry& entry = *container.entry++;
      if (!entry.key.IsString()) return Refuse("a key in it is not a string");
      if (!WriteBytes(entry.key.AsStringView())) return false;
      element = &entry.value;
    } else {
      containers_.pop_back();
      return true;
    }
    const Type type = TypeOf(*element);
    bytes_.push_back(static_cast<std::uint8_t>(type));
    return WriteContent(*element, type);
  }

  bool WriteContent(const Value& value, Type type) {
    if (bytes_.size() > kMaximumUserDefaultsBlob) return RefuseSize();
    switch (type) {
      case Type::None:
        return Refuse("it is, or holds, what user defaults do not keep");
      case Type::String:
        return WriteBytes(value.AsStringView());
      case Type::Number:
        WriteNumber(value);
        return true;
      case Type::Boolean:
        bytes_.push_back(value.AsBool() ? 1 : 0);
        return true;
      case Type::Data:
        return WriteBytes(
            {reinterpret_cast<const char*>(value.AsData().data()), value.AsData().size()});
      case Type::Date:
        WriteInteger(std::bit_cast<std::uint64_t>(value.AsObjectOf<Date>()->SecondsSince1970()), 8);
        return true;
      case Type::Array:
      case Type::Dictionary:
        return OpenContainer(value);
    }
    return false;
  }

  bool OpenContainer(const Value& value) {
    if (containers_.size() >= kMaximumDepth) return Refuse("it nests too deep");
    if (value.Count() > kMaximumUserDefaultsBlob) return RefuseSize();
    WriteInteger(value.Count(), 4);
    const DictionaryEntries entries = value.Entries();
    containers_.push_back({value.Items(), entries.begin(), entries.end()});
    return true;
  }

  bool WriteBytes(std::string_view text) {
    constexpr std::size_t kMostText = kMaximumUserDefaultsBlob - 4;
    if (text.size() > kMostText || bytes_.size() > kMostText - text.size()) return RefuseSize();
    WriteInteger(text.size(), 4);
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return true;
  }

  void WriteNumber(const Value& number) {
    const NumberType type = number.StorageType().value_or(NumberType::SInt64);
    WriteInteger(static_cast<std::uint32_t>(type), 4);
    WriteInteger(IsFloatingPoint(type) ? std::bit_cast<std::uint64_t>(number.AsDouble())
                                       : static_cast<std::uint64_t>(number.AsInt64()),
                 8);
  }

  void WriteInteger(std::uint64_t number, int width) {
    for (int byte = 0; byte < width; ++byte) {
      bytes_.push_back(static_cast<std::uint8_t>(number >> (8 * byte)));
    }
  }

  std::vector<std::uint8_t> bytes_;
  std::vector<Container> containers_;
  std::string_view objection_;
};

class Decoder {
 public:
  explicit Decoder(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  std::optional<Value> Decode(Type rootType) {
    if (ReadInteger(1) != kVersion) return std::nullopt;
    Read(rootType);
    while (sound_ && !containers_.empty()) ContinueContainer();
    if (!sound_ || !rest_.empty()) return std::nullopt;
    return std::move(root_);
  }

 private:
  // A container some of whose elements are still to be read.
  struct Container {
    Type type;
    std::uint64_t missing;
    Value value;
    Value key;  // of the entry whose value is being read
  };

  void ContinueContainer() {
    Container& container = containers_.back();
    if (container.missing == 0) {
      Value value = std::move(container.value);
      containers_.pop_back();
      Deliver(std::move(value));
      return;
    }
    --container.missing;
    if (container.type == Type::Dictionary) container.key = Value(ReadText());
    Read(static_cast<Type>(ReadInteger(1)));
  }

  // Reads one value's content and puts the value where it belongs; a container with elements goes
  // there only when those have been read.
  void Read(Type type) {
    switch (type) {
      case Type::String:
        return Deliver(Value(ReadText()));
      case Type::Number:
        return Deliver(ReadNumber());
      case Type::Boolean: {
        const std::uint64_t byte = ReadInteger(1);
        if (byte > 1) sound_ = false;
        return Deliver(Value(byte == 1));
      }
      case Type::Data: {
        const std::string_view text = ReadText();
        return Deliver(Value::FromData({text.begin(), text.end()}));
      }
      case Type::Date:
        return Deliver(
            Value::FromObject(std::make_shared<Date>(std::bit_cast<double>(ReadInteger(8)))));
      case Type::Array:
      case Type::Dictionary:
        return OpenContainer(type);
      case Type::None:
        break;
    }
    sound_ = false;
  }

  void OpenContainer(Type type) {
    // The shortest element is a boolean, the shortest entry one with an empty key.
    const std::size_t shortest = type == Type::Array ? 2 : 6;
    const std::uint64_t count = ReadInteger(4);
    if (containers_.size() >= kMaximumDepth || count > rest_.size() / shortest) {
      sound_ = false;
      return;
    }
    containers_.push_back(
        {type, count, type == Type::Array ? Value::Array() : Value::Dictionary(), Value()});
  }

  void Deliver(Value value) {
    if (!sound_) return;
    if (containers_.empty()) {
      root_ = std::move(value);
    } else if (Container& container = containers_.back(); container.type == Type::Array) {
      container.value.Append(std::move(value));
    } else {
      container.value.Set(std::move(container.key), std::move(value));
    }
  }

  Value ReadNumber() {
    const auto type = static_cast<NumberType>(static_cast<std::uint32_t>(ReadInteger(4)));
    const std::uint64_t bits = ReadInteger(8);
    return IsFloatingPoint(type) ? Value::Number(type, std::bit_cast<double>(bits))
                                 : Value::Number(type, static_cast<std::int64_t>(bits));
  }

  std::string_view ReadText() {
    const std::uint64_t length = ReadInteger(4);
    if (length > rest_.size()) sound_ = false;
    if (!sound_) return "";
    const std::string_view text(reinterpret_cast<const char*>(rest_.data()), length);
    rest_ = rest_.subspan(length);
    return text;
  }

  // 0 once the bytes have run out.
  std::uint64_t ReadInteger(std::size_t width) {
    if (rest_.size() < width) sound_ = false;
    if (!sound_) return 0;
    std::uint64_t number = 0;
    for (std::size_t byte = 0; byte < width; ++byte) {
      number |= std::uint64_t{rest_[byte]} << (8 * byte);
    }
    rest_ = rest_.subspan(width);
    return number;
  }

  std::span<const std::uint8_t> rest_;
  bool sound_ = true;
  std::vector<Container> containers_;
  std::optional<Value> root_;
};

}  // namespace

std::optional<SqliteUserDefaultsBlob> EncodeUserDefaultsValue(const Value& value,
                                                              std::string_view& objection) {
  Encoder encoder;
  if (!encoder.Encode(value)) {
    objection = encoder.Objection();
    return std::nullopt;
  }
  return SqliteUserDefaultsBlob{static_cast<std::int64_t>(TypeOf(value)), encoder.TakeBytes()};
}

std::optional<Value> DecodeUserDefaultsValue(std::int64_t type,
                                             std::span<const std::uint8_t> bytes) {
  if (type < 0 || type > static_cast<std::int64_t>(Type::Dictionary)) return std::nullopt;
  return Decoder(bytes).Decode(static_cast<Type>(type));
}

}  // namespace Platform
