#include "services/json/JsonVariantBuilder.h"

#include <cstddef>
#include <string>
#include <utility>

namespace Velmora {
namespace {

// Few texts nest deeper.
constexpr std::size_t kUsualDepth = 8;

// Room for so many elements at first.
constexpr std::size_t kFewElements = 4;

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
  VariantMap& members = levels_.back().members;
  if (levels_.size() == 1) {
    map_ = std::move(members);
    levels_.pop_back();
  } else {
    std::shared_ptr<Variant> value = Variant::FromVariantMap(std::move(members));
    levels_.pop_back();
    Add(std::move(value));
  }
}

void JsonVariantBuilder::BeginArray() { levels_.emplace_back(); }

void JsonVariantBuilder::EndArray() {
  VariantVector& elements = levels_.back().elements;
  if (levels_.size() == 1) {
    vector_ = std::move(elements);
    levels_.pop_back();
  } else {
    std::shared_ptr<Variant> value = Variant::FromVariantVector(std::move(elements));
    levels_.pop_back();
    Add(std::move(value));
  }
}

void JsonVariantBuilder::Key(std::string_view key) {
  // Texts that were written from a map have their keys in order, so that each belongs at the end.
  Level& level = levels_.back();
  level.member = &level.members.emplace_hint(level.members.end(), key, nullptr)->second;
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
    if (level.elements.capacity() == 0) level.elements.reserve(kFewElements);
    level.elements.push_back(std::move(value));
  }
}

}  // namespace Velmora
