#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/SdkError.h"

// What the event hub accepts from outside. May be used on any thread.
namespace Velmora::EventRules {

// The greatest length, in bytes, of an event type, an event source and a module name.
inline constexpr std::size_t kMaxNameLength = 255;

// The greatest number of values in the data of one event, containers and their members together.
inline constexpr std::size_t kMaxValueCount = 1'000'000;

// True for an event type or source: 1 to kMaxNameLength bytes of UTF-8 without blanks and without
// control characters. Upper and lower case differ.
bool IsTypeOrSource(std::string_view text);

// True for a module name: 1 to kMaxNameLength bytes of UTF-8 without control characters, blanks
// alone not being enough.
bool IsModuleName(std::string_view text);

// True when the data can be written as JSON: texts are UTF-8, numbers are finite, and there are no
// more than kMaxValueCount values. However deep they are nested, no stack is used for it. No data
// are fine.
bool AreDataSupported(const EventData* data);

// Why an event cannot be dispatched: "external_module.event_was_null",
// "external_module.event_type_not_supported", "external_module.event_source_not_supported" or
// "external_module.event_data_not_supported". Nothing when it can.
std::optional<SdkError> Check(const std::shared_ptr<Event>& event);

// The same for a listener's type and source.
std::optional<SdkError> CheckTypeAndSource(std::string_view type, std::string_view source);

}  // namespace Velmora::EventRules
