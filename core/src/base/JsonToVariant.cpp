#include "base/JsonToVariant.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "VelmoraCore/JsonArray.h"

namespace Velmora {
namespace {

// A container on the way down: what has been read of it and what comes next.
struct Level {
  explicit Level(std::shared_ptr<JsonObject> container) : object(std::move(container)) {
    object->Keys(keys);
  }
  explicit Level(std::shared_ptr<JsonArray> container)
      : array(std::move(container)), length(array->Length()) {}

  bool IsFinished() const { return next == (object != nullptr ? keys.size() : length); }

  void Add(std::shared_ptr<Variant> value) {
    if (object != nullptr) {
      members.emplace_hint(members.end(), keys[next], std::move(value));
    } else {
      elements.push_back(std::move(value));
    }
    ++next;
  }

  std::shared_ptr<Variant> ToVariant() {
    return object != nullptr ? Variant::FromVariantMap(std::move(members))
                             : Variant::FromVariantVector(std::move(elements));
  }

  std::shared_ptr<JsonObject> object;
  std::vector<std::string> keys;
  VariantMap members;
  std::shared_ptr<JsonArray> array;
  std::size_t length = 0;
  VariantVector elements;
  std::size_t next = 0;
};

template <class Container, class Position>
std::shared_ptr<Variant> ReadNumber(const Container& container, const Position& position) {
  const double number = container.GetDouble(position);
  const std::int64_t whole = container.GetLong(position);
  const bool isNegativeZero = whole == 0 && std::signbit(number);
  if (static_cast<double>(whole) == number && !isNegativeZero) {
    return Variant::FromLong(whole);
  }
  return Variant::FromDouble(number);
}

// Adds the value at `position` to the level that `container` stands on, or opens a level for it.
template <class Container, class Position>
void Read(const Container& container, const Position& position, std::vector<Level>& levels) {
  switch (container.GetType(position)) {
    case JsonType::Number:
      return levels.back().Add(ReadNumber(container, position));
    case JsonType::Boolean:
      return levels.back().Add(Variant::FromBoolean(container.GetBoolean(position)));
    case JsonType::String:
      return levels.back().Add(Variant::FromString(container.GetString(position)));
    case JsonType::Array:
      levels.emplace_back(container.GetJsonArray(position));
      return;
    case JsonType::Object:
      levels.emplace_back(container.GetJsonObject(position));
      return;
    case JsonType::Null:
      return levels.back().Add(Variant::FromNull());
  }
}

void ReadNext(std::vector<Level>& levels) {
  const Level& level = levels.back();
  // Opening a level moves the others; these keep the container and the key in place meanwhile.
  if (const std::shared_ptr<JsonObject> object = level.object) {
    const std::string key = level.keys[level.next];
    Read(*object, key, levels);
  } else {
    const std::shared_ptr<JsonArray> array = level.array;
    Read(*array, static_cast<std::uint32_t>(level.next), levels);
  }
}

}  // namespace

VariantMap ToVariantMap(const std::shared_ptr<JsonObject>& object) {
  std::vector<Level> levels;
  levels.emplace_back(object);
  while (levels.size() > 1 || !levels.back().IsFinished()) {
    if (levels.back().IsFinished()) {
      std::shared_ptr<Variant> container = levels.back().ToVariant();
      levels.pop_back();
      levels.back().Add(std::move(container));
    } else {
      ReadNext(levels);
    }
  }
  return std::move(levels.back().members);
}

}  // namespace Velmora
