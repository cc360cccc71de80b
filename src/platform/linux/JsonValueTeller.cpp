#include "platform/linux/JsonValueTeller.h"

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

namespace Platform {
namespace {

// Keeps the containers on its way in a list of its own, so that nesting needs no stack.
class Teller {
 public:
  explicit Teller(JsonVisitor& visitor) : visitor_(visitor) {}

  const char* Tell(const Value& root) {
    if (!root.IsDictionary() && !root.IsArray()) {
      return "The root is neither a dictionary nor an array";
    }
    TellOne(root);
    while (problem_ == nullptr && !levels_.empty()) Step();
    return problem_;
  }

 private:
  struct Level {
    DictionaryEntries::Iterator entry;
    DictionaryEntries::Iterator entryEnd;
    std::span<const Value> items;  // those that are left
    bool isDictionary = false;
  };

  void Step() {
    Level& level = levels_.back();
    if (level.isDictionary) {
      if (level.entry == level.entryEnd) {
        levels_.pop_back();
        visitor_.EndObject();
        return;
      }
      const DictionaryEntry& entry = *level.entry;
      ++level.entry;
      if (!entry.key.IsString()) return Fail("A key is not a string");
      visitor_.Key(entry.key.AsStringView());
      TellOne(entry.value);
      return;
    }
    if (level.items.empty()) {
      levels_.pop_back();
      visitor_.EndArray();
      return;
    }
    const Value& item = level.items.front();
    level.items = level.items.subspan(1);
    TellOne(item);
  }

  void TellOne(const Value& value) {
    switch (value.Kind()) {
      case ValueKind::String:
        return visitor_.String(value.AsStringView());
      case ValueKind::Number:
        return TellNumber(value);
      case ValueKind::Boolean:
        return visitor_.Boolean(value.AsBool());
      case ValueKind::Null:
        return visitor_.Null();
      case ValueKind::Array:
        visitor_.BeginArray();
        return Enter({{}, {}, value.Items(), false});
      case ValueKind::Dictionary: {
        const DictionaryEntries entries = value.Entries();
        visitor_.BeginObject();
        return Enter({entries.begin(), entries.end(), {}, true});
      }
      case ValueKind::Absent:
      case ValueKind::Data:
      case ValueKind::Object:
        return Fail("A value is of a kind that JSON does not have");
    }
  }

  void TellNumber(const Value& value) {
    if (!IsFloatingPoint(*value.StorageType())) return visitor_.Integer(value.AsInt64());
    const double number = value.AsDouble();
    if (!std::isfinite(number)) return Fail("A number is infinite or not a number");
    visitor_.Double(number);
  }

  void Enter(const Level& level) {
    levels_.push_back(level);
    if (levels_.size() > std::size_t{JsonSerialization::kMaximumDepth}) {
      Fail("Containers are nested deeper than 1024 levels");
    }
  }

  void Fail(const char* problem) { problem_ = problem; }

  JsonVisitor& visitor_;
  std::vector<Level> levels_;
  const char* problem_ = nullptr;
};

}  // namespace

const char* TellJsonValue(const Value& value, JsonVisitor& visitor) {
  return Teller(visitor).Tell(value);
}

}  // namespace Platform
