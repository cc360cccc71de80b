#include "modules/JsonText.h"

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "base/JsonToVariant.h"

namespace Velmora::JsonText {
namespace {

bool LooksLikeObject(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && text[first] == '{';
}

}  // namespace

std::optional<std::string> Write(const PlatformServicesInterface& services, const VariantMap& map,
                                 const char* logTag, const char* subject) {
  const std::shared_ptr<JsonUtilityServiceInterface> json = services.GetJsonUtilityService();
  if (json == nullptr) {
    Log::Error(logTag, "%s: there is no JSON service to write with", subject);
    return std::nullopt;
  }
  std::optional<std::string> text;
  TryCatch([&] { text = json->CreateJsonObject(map)->ToString(); },
           [&](SdkError& error) { Log::Error(logTag, "%s: %s", subject, error.what()); });
  return text;
}

std::optional<VariantMap> Read(const PlatformServicesInterface& services, const std::string& text) {
  const std::shared_ptr<JsonUtilityServiceInterface> json = services.GetJsonUtilityService();
  std::optional<VariantMap> map;
  if (json == nullptr || !LooksLikeObject(text)) return map;
  TrySwallow([&] { map = ToVariantMap(json->CreateJsonObject(text)); });
  return map;
}

}  // namespace Velmora::JsonText
