#include "services/json/JsonVariantBuilder.h"

#include <cstddef>
#include <string>
#include <utility>

namespace Velmora {
namespace {

// Few texts nest deeper.
constexpr std::size_t kUsualDepth = 8;

}  // namespace

JsonVariantBuilder::JsonVariantBuilder() { levels_.reserve(kUsualDepth); }

std::optional<VariantMap> JsonVariantBuilder::TakeMap() {
  return std::exchange(map_, std::nullopt);
}

std::optional<VariantVector> JsonVariantBuilder::TakeVector() {
  return std::exchange(vector_, std::nullopt);
}

void JsonVariantBuilder::BeginObject() { levels_.emplace_back().isObject = true; }

void JsonVariantBuilder::EndObject() {
  VariantMap members = std::move(levels_.back().members);
  levels_.pop_back();
  if (levels_.empty()) {
    map_ = std::move(members);
  } else {
    Add(Variant::FromVariantMap(std::move(members)));
  }
}

void JsonVariantBuilder::BeginArray() { levels_.emplace_back(); }

void JsonVariantBuilder::EndArray() {
  VariantVector elements = std::move(levels_.back().elements);
  levels_.pop_back();
  if (levels_.empty()) {
    vector_ = std::move(elements);
  } else {
    Add(Variant::FromVariantVector(std::move(elements)));
  }
}

void JsonVariantBuilder::Key(std::string_view key) {
  if (key.find('\0') != std::string_view::npos) heardZeroInKey_ = true;
  Level& level = levels_.back();
  // Texts that were written from a map have their keys in order.
  const auto entry = level.members.try_emplace(level.members.end(), std::string(key));
  level.member = &entry->second;
}

void JsonVariantBuilder::String(std::string_view text) {
  Add(Variant::FromString(std::string(text)));
}

void JsonVariantBuilder::Integer(std::int64_t number) { Add(Variant::FromLong(number)); }

void JsonVariantBuilder::Double(double number) { Add(Variant::FromDouble(number)); }

void JsonVariantBuilder::Boolean(bool value) {
  std::shared_ptr<Variant>& boolean = value ? true_ : false_;
  if (!boolean) boolean = Variant::FromBoolean(value);
  Add(boolean);
}

void JsonVariantBuilder::Null() {
  if (!null_) null_ = Variant::FromNull();
  Add(null_);
}

void JsonVariantBuilder::Add(std::shared_ptr<Variant> value) {
  Level& level = levels_.back();
  if (level.isObject) {
    *level.member = std::move(value);
  } else {
    level.elements.push_back(std::move(value));
  }
}

}  // namespace Velmora
