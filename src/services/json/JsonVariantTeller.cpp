#include "services/json/JsonVariantTeller.h"

#include <string>

namespace Velmora {
namespace {

bool HasZero(const std::string& text) { return text.find('\0') != std::string::npos; }

// True when the platform has no value for the variant.
bool IsLeftOut(const std::shared_ptr<Variant>& value) {
  if (!value) return true;
  const VariantKind kind = value->GetKind();
  if (kind == VariantKind::String) return value->GetString().empty();
  return kind == VariantKind::Null;
}

}  // namespace

bool JsonVariantTeller::Tell(const VariantMap& map) {
  Enter(map);
  return Run();
}

bool JsonVariantTeller::Tell(const VariantVector& vector) {
  Enter(vector);
  return Run();
}

bool JsonVariantTeller::Run() {
  while (!levels_.empty()) {
    if (!Step()) return false;
  }
  return true;
}

bool JsonVariantTeller::Step() {
  return levels_.back().members != nullptr ? StepMember() : StepElement();
}

bool JsonVariantTeller::StepMember() {
  Level& level = levels_.back();
  if (level.member == level.members->end()) {
    levels_.pop_back();
    visitor_.EndObject();
    return true;
  }
  const auto& [key, value] = *level.member;
  ++level.member;
  if (key.empty() || HasZero(key)) return false;
  if (IsLeftOut(value)) return true;
  visitor_.Key(key);
  return TellValue(*value);
}

bool JsonVariantTeller::StepElement() {
  Level& level = levels_.back();
  if (level.element == level.elements->size()) {
    levels_.pop_back();
    visitor_.EndArray();
    return true;
  }
  const std::shared_ptr<Variant>& value = (*level.elements)[level.element];
  ++level.element;
  return !IsLeftOut(value) && TellValue(*value);
}

bool JsonVariantTeller::TellValue(const Variant& value) {
  switch (value.GetKind()) {
    case VariantKind::String:
      if (HasZero(value.GetString())) return false;
      visitor_.String(value.GetString());
      return true;
    case VariantKind::Integer:
    case VariantKind::Long:
      visitor_.Integer(value.GetLong());
      return true;
    case VariantKind::Double:
      visitor_.Double(value.GetDouble());
      return true;
    case VariantKind::Boolean:
      visitor_.Boolean(value.GetBoolean());
      return true;
    case VariantKind::VariantVector:
      Enter(value.GetVariantVector());
      return true;
    case VariantKind::VariantMap:
      Enter(value.GetVariantMap());
      return true;
    case VariantKind::Null:
      break;
  }
  return false;
}

void JsonVariantTeller::Enter(const VariantMap& map) {
  visitor_.BeginObject();
  Level& level = levels_.emplace_back();
  level.members = &map;
  level.member = map.begin();
}

void JsonVariantTeller::Enter(const VariantVector& vector) {
  visitor_.BeginArray();
  levels_.emplace_back().elements = &vector;
}

}  // namespace Velmora
