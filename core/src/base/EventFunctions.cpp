#include "VelmoraCore/EventFunctions.h"

#include <exception>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/SdkError.h"
#include "base/JsonToVariant.h"
#include "base/LogText.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Event";
constexpr const char* kSourceLocation = "src/base/EventFunctions";

[[noreturn]] void ThrowDataNotSupported(const std::string& message, int line) {
  throw SdkError(ErrorCodes::kExternalModuleEventDataNotSupported, message,
                 DebugInfo(kSourceLocation, line));
}

bool LooksLikeObject(const std::string& json) {
  const std::size_t first = json.find_first_not_of(" \t\r\n");
  return first != std::string::npos && json[first] == '{';
}

std::shared_ptr<const EventData> ReadData(JsonUtilityServiceInterface* jsonUtilityService,
                                          const std::string& json) {
  if (json.empty()) {
    return nullptr;
  }
  if (jsonUtilityService == nullptr) {
    ThrowDataNotSupported("event data need a JSON utility service", __LINE__);
  }
  if (!LooksLikeObject(json)) {
    ThrowDataNotSupported("event data must be a JSON object", __LINE__);
  }
  try {
    const std::shared_ptr<JsonObject> object = jsonUtilityService->CreateJsonObject(json);
    if (object != nullptr) {
      return std::make_shared<const EventData>(ToVariantMap(object));
    }
  } catch (const SdkError& error) {
    ThrowDataNotSupported(error.GetMessage(), __LINE__);
  }
  ThrowDataNotSupported("event data could not be read", __LINE__);
}

}  // namespace

// The services come by value because that is how the library's own callers pass them.
// NOLINTBEGIN(performance-unnecessary-value-param)

std::shared_ptr<Event> CreateBroadcastEvent(
    std::shared_ptr<JsonUtilityServiceInterface> jsonUtilityService, const std::string& name,
    const std::string& type, const std::string& source, const std::string& dataJson) {
  return std::make_shared<Event>(name, type, source, ReadData(jsonUtilityService.get(), dataJson));
}

std::string GetEventTypeAsString(const std::shared_ptr<Event>& event) {
  return event == nullptr ? std::string() : event->GetType();
}

std::string GetEventSourceAsString(const std::shared_ptr<Event>& event) {
  return event == nullptr ? std::string() : event->GetSource();
}

std::string GetEventDataAsString(const std::shared_ptr<Event>& event,
                                 std::shared_ptr<JsonUtilityServiceInterface> jsonUtilityService) {
  if (event == nullptr || event->GetData() == nullptr || jsonUtilityService == nullptr) {
    return {};
  }
  try {
    const std::shared_ptr<JsonObject> object =
        jsonUtilityService->CreateJsonObject(event->GetData()->GetAll());
    return object == nullptr ? std::string() : object->ToString();
  } catch (const std::exception& error) {
    Log::Error(kLogTag, "The data of the event %s cannot be written as JSON: %s",
               LogText::Readable(event->GetName()).c_str(), error.what());
    return {};
  }
}

// NOLINTEND(performance-unnecessary-value-param)

}  // namespace Velmora
