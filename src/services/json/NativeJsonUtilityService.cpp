#include "services/json/NativeJsonUtilityService.h"

#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "services/json/NativeJsonArray.h"
#include "services/json/NativeJsonObject.h"

namespace Velmora {
namespace {

// As std::to_string gives it, whatever the process's locale.
std::string SixDecimals(double number) {
  constexpr int kDecimals = 6;
  // The longest double has 309 digits before the point.
  std::array<char, 320> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                    std::chars_format::fixed, kDecimals);
  return {buffer.data(), result.ptr};
}

// The flat text of a member; nothing for one that holds nothing.
std::optional<std::string> FlatText(const std::shared_ptr<Variant>& value) {
  if (!value) return std::nullopt;
  switch (value->GetKind()) {
    case VariantKind::Null:
      return std::string();
    case VariantKind::String:
      return value->GetString();
    case VariantKind::Integer:
      return std::to_string(value->GetInteger());
    case VariantKind::Long:
      return std::to_string(value->GetLong());
    case VariantKind::Double:
      return SixDecimals(value->GetDouble());
    case VariantKind::Boolean:
      return std::to_string(static_cast<int>(value->GetBoolean()));
    case VariantKind::VariantVector:
      return NativeJsonArray(value->GetVariantVector()).ToString();
    case VariantKind::VariantMap:
      return NativeJsonObject(value->GetVariantMap()).ToString();
  }
  return std::nullopt;
}

}  // namespace

std::shared_ptr<JsonObject> NativeJsonUtilityService::CreateJsonObject(const std::string& json) {
  return std::make_shared<NativeJsonObject>(json);
}

std::shared_ptr<JsonObject> NativeJsonUtilityService::CreateJsonObject(
    const std::map<std::string, std::shared_ptr<Variant>>& map) {
  return std::make_shared<NativeJsonObject>(map);
}

std::shared_ptr<JsonObject> NativeJsonUtilityService::CreateJsonObject(
    const std::map<std::string, std::string>& map) {
  return std::make_shared<NativeJsonObject>(map);
}

std::shared_ptr<JsonObject> NativeJsonUtilityService::CreateEmptyJsonObject() {
  return std::make_shared<NativeJsonObject>("{}");
}

std::shared_ptr<JsonArray> NativeJsonUtilityService::CreateJsonArray(const std::string& json) {
  return std::make_shared<NativeJsonArray>(json);
}

std::shared_ptr<JsonArray> NativeJsonUtilityService::CreateJsonArray(
    const std::vector<std::shared_ptr<Variant>>& values) {
  return std::make_shared<NativeJsonArray>(values);
}

std::shared_ptr<JsonArray> NativeJsonUtilityService::CreateEmptyJsonArray() {
  return std::make_shared<NativeJsonArray>("[]");
}

std::map<std::string, std::string> NativeJsonUtilityService::MapFromJsonObject(
    const std::shared_ptr<JsonObject>& object) {
  StringMap result;
  const auto* source = dynamic_cast<const NativeJsonObject*>(object.get());
  if (source == nullptr) return result;
  for (const auto& [key, value] : source->Members()) {
    if (auto text = FlatText(value)) result.emplace_hint(result.end(), key, std::move(*text));
  }
  return result;
}

std::shared_ptr<JsonUtilityServiceInterface> CreateNativeJsonUtilityService() {
  return std::make_shared<NativeJsonUtilityService>();
}

}  // namespace Velmora
