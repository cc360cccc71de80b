#include "services/json/JsonVariantTeller.h"

#include <cstddef>
#include <string>

namespace Velmora {
namespace {

// Few containers nest deeper.
constexpr std::size_t kUsualDepth = 8;

bool HasZero(const std::string& text) { return text.find('\0') != std::string::npos; }

// True when the platform has no value for the variant.
bool IsLeftOut(const std::shared_ptr<Variant>& value) {
  if (!value) return true;
  const VariantKind kind = value->GetKind();
  if (kind == VariantKind::String) return value->GetString().empty();
  return kind == VariantKind::Null;
}

bool IsContainer(const Variant& value) {
  return value.GetKind() == VariantKind::VariantVector ||
         value.GetKind() == VariantKind::VariantMap;
}

}  // namespace

JsonVariantTeller::JsonVariantTeller(Platform::JsonVisitor& visitor) : visitor_(visitor) {
  levels_.reserve(kUsualDepth);
}

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
    const bool canGoOn = levels_.back().members != nullptr ? TellMembers() : TellElements();
    if (!canGoOn) return false;
  }
  return true;
}

bool JsonVariantTeller::TellMembers() {
  Level& level = levels_.back();
  for (auto member = level.member; member != level.members->end();) {
    const auto& [key, value] = *member;
    ++member;
    if (key.empty()) return false;
    if (IsLeftOut(value)) {
      // Under a key that is cut off it would take away another member.
      if (HasZero(key)) return false;
      continue;
    }
    visitor_.Key(key);
    if (IsContainer(*value)) {
      level.member = member;
      EnterValue(*value);
      return true;
    }
    TellScalar(*value);
  }
  levels_.pop_back();
  visitor_.EndObject();
  return true;
}

bool JsonVariantTeller::TellElements() {
  Level& level = levels_.back();
  for (auto element = level.element; element != level.elements->end();) {
    const std::shared_ptr<Variant>& value = *element;
    ++element;
    if (IsLeftOut(value)) return false;
    if (IsContainer(*value)) {
      level.element = element;
      EnterValue(*value);
      return true;
    }
    TellScalar(*value);
  }
  levels_.pop_back();
  visitor_.EndArray();
  return true;
}

void JsonVariantTeller::TellScalar(const Variant& value) {
  switch (value.GetKind()) {
    case VariantKind::String:
      return visitor_.String(value.GetString());
    case VariantKind::Integer:
    case VariantKind::Long:
      return visitor_.Integer(value.GetLong());
    case VariantKind::Double:
      return visitor_.Double(value.GetDouble());
    case VariantKind::Boolean:
      return visitor_.Boolean(value.GetBoolean());
    case VariantKind::VariantVector:
    case VariantKind::VariantMap:
    case VariantKind::Null:
      return;
  }
}

void JsonVariantTeller::EnterValue(const Variant& container) {
  if (container.GetKind() == VariantKind::VariantMap) {
    Enter(container.GetVariantMap());
  } else {
    Enter(container.GetVariantVector());
  }
}

void JsonVariantTeller::Enter(const VariantMap& map) {
  visitor_.BeginObject();
  Level& level = levels_.emplace_back();
  level.members = &map;
  level.member = map.begin();
}

void JsonVariantTeller::Enter(const VariantVector& vector) {
  visitor_.BeginArray();
  Level& level = levels_.emplace_back();
  level.elements = &vector;
  level.element = vector.begin();
}

}  // namespace Velmora
