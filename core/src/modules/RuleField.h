#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// What a field of an event holds: a text of the event's own, or a value of its data, or nothing.
// Lives no longer than the event.
struct FieldValue {
  const std::string* text = nullptr;  // of a value that is a text as well
  const Variant* value = nullptr;
};

// The place that a test of a rule looks at: an event's type, source or name, or a value of its
// data, by the keys that lead to it. Never changes once read; any thread may ask.
class RuleField {
 public:
  static constexpr std::size_t kMaxKeys = 32;

  // From "type", "source", "name" or "data.key.key", or from a list such as ["data", "key.with.a",
  // "dot"]. Nothing, and `problem` says why, for anything else.
  static std::optional<RuleField> Read(const Variant& json, std::string& problem);

  // Null values, and what lies behind them, are not there.
  FieldValue Find(const Event& event) const;

 private:
  enum class Place { Type, Source, Name, Data };

  Place place_ = Place::Type;
  std::vector<std::string> keys_;  // below the data
};

}  // namespace Velmora
