#include "interop/ValueBuilder.h"

#include <utility>

#include "interop/StringConversion.h"

namespace Velmora {
namespace {

using Platform::Value;

Value ValueOfScalar(const std::shared_ptr<Variant>& variant) {
  if (!variant) return {};
  switch (variant->GetKind()) {
    case VariantKind::String:
      return ToNSStringValue(variant->GetString());
    case VariantKind::Integer:
      return variant->GetInteger();
    case VariantKind::Long:
      return variant->GetLong();
    case VariantKind::Double:
      return variant->GetDouble();
    case VariantKind::Boolean:
      return variant->GetBoolean();
    default:
      return {};
  }
}

}  // namespace

Value ValueBuilder::Build(const std::shared_ptr<Variant>& variant) {
  return OpenIfContainer(variant) ? Run() : ValueOfScalar(variant);
}

Value ValueBuilder::BuildDictionary(const VariantMap& map) {
  OpenMap(map);
  return Run();
}

Value ValueBuilder::BuildArray(const VariantVector& vector) {
  OpenVector(vector);
  return Run();
}

Value ValueBuilder::Run() {
  while (true) {
    Frame& frame = frames_.back();
    if (frame.vector != nullptr ? ContinueVector() : ContinueMap()) continue;
    Value result = frame.vector != nullptr ? Value::FromVector(std::move(frame.items))
                                           : std::move(frame.dictionary);
    frames_.pop_back();
    if (frames_.empty()) return result;
    Deliver(std::move(result));
  }
}

bool ValueBuilder::OpenIfContainer(const std::shared_ptr<Variant>& variant) {
  if (!variant) return false;
  if (variant->GetKind() == VariantKind::VariantVector) {
    OpenVector(variant->GetVariantVector());
    return true;
  }
  if (variant->GetKind() == VariantKind::VariantMap) {
    OpenMap(variant->GetVariantMap());
    return true;
  }
  return false;
}

void ValueBuilder::OpenVector(const VariantVector& vector) {
  Frame& frame = frames_.emplace_back();
  frame.vector = &vector;
  frame.items.reserve(vector.size());
}

void ValueBuilder::OpenMap(const VariantMap& map) {
  Frame& frame = frames_.emplace_back();
  frame.map = &map;
  frame.entry = map.begin();
  frame.dictionary = Value::Dictionary(map.size());
}

bool ValueBuilder::ContinueVector() {
  Frame& frame = frames_.back();
  while (frame.position != frame.vector->size()) {
    const std::shared_ptr<Variant>& element = (*frame.vector)[frame.position];
    if (OpenIfContainer(element)) return true;
    Deliver(ValueOfScalar(element));
  }
  return false;
}

bool ValueBuilder::ContinueMap() {
  Frame& frame = frames_.back();
  while (frame.entry != frame.map->end()) {
    if (OpenIfContainer(frame.entry->second)) return true;
    Deliver(ValueOfScalar(frame.entry->second));
  }
  return false;
}

void ValueBuilder::Deliver(Value value) {
  Frame& frame = frames_.back();
  if (frame.vector != nullptr) {
    frame.items.push_back(std::move(value));
    ++frame.position;
    return;
  }
  Value key = ToNSStringValue(frame.entry->first);
  if (!key.IsAbsent()) frame.dictionary.Set(std::move(key), std::move(value));
  ++frame.entry;
}

}  // namespace Velmora
