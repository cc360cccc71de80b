#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/JsonUtilityServiceInterface.h"

// Events as their names and JSON texts, for callers beyond the core. All may be called on any
// thread.
namespace Velmora {

// A new event whose data are read from `dataJson`, a JSON object as UTF-8 text; the empty text
// means no data. Numbers without a fraction become 64-bit integers, other numbers doubles. Throws
// an SdkError "external_module.event_data_not_supported" when the text is anything else. Name, type
// and source are not checked.
VELMORA_CORE_API std::shared_ptr<Event> CreateBroadcastEvent(
    std::shared_ptr<JsonUtilityServiceInterface> jsonUtilityService, const std::string& name,
    const std::string& type, const std::string& source, const std::string& dataJson);

// Empty for an empty pointer.
VELMORA_CORE_API std::string GetEventTypeAsString(const std::shared_ptr<Event>& event);
VELMORA_CORE_API std::string GetEventSourceAsString(const std::shared_ptr<Event>& event);

// The event's data as JSON text. Empty without an event or without data, and when the data cannot
// be written as JSON, which is logged. Never throws.
VELMORA_CORE_API std::string GetEventDataAsString(
    const std::shared_ptr<Event>& event,
    std::shared_ptr<JsonUtilityServiceInterface> jsonUtilityService);

}  // namespace Velmora
