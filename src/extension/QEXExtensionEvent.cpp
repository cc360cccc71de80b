#include "QEXCore_iOS/QEXExtensionEvent.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/EventFunctions.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "interop/StringConversion.h"
#include "services/json/NativeJsonUtilityService.h"

using Velmora::ToCppString;
using Velmora::ToNSString;

namespace {

// The payload as the core takes it. Nothing when there can be none.
std::optional<std::string> PayloadOf(const Platform::Value& data, Platform::Error* error) {
  if (data.IsAbsent()) return std::string();
  const auto json = Platform::Host::Current()->jsonSerialization;
  if (!data.IsDictionary() || !json->IsValidJsonObject(data)) return std::nullopt;
  return json->Serialize(data, Platform::JsonLayout::Compact, error);
}

}  // namespace

QEXExtensionEvent::QEXExtensionEvent(
    std::shared_ptr<Velmora::Event> event,
    std::shared_ptr<Velmora::JsonUtilityServiceInterface> jsonUtilityService)
    : event_(std::move(event)), json_utility_service_(std::move(jsonUtilityService)) {}

std::shared_ptr<QEXExtensionEvent> QEXExtensionEvent::newInternal(
    const std::shared_ptr<Velmora::Event>& event,
    const std::shared_ptr<Velmora::JsonUtilityServiceInterface>& jsonUtilityService) {
  return std::shared_ptr<QEXExtensionEvent>(new QEXExtensionEvent(event, jsonUtilityService));
}

std::shared_ptr<QEXExtensionEvent> QEXExtensionEvent::extensionEventWithName(
    const std::optional<std::string>& name, const std::optional<std::string>& type,
    const std::optional<std::string>& source, const Platform::Value& data, Platform::Error* error) {
  std::shared_ptr<QEXExtensionEvent> made;
  Velmora::TryCatch(
      [&] {
        const std::optional<std::string> payload = PayloadOf(data, error);
        if (!payload.has_value()) return;
        const auto service = Velmora::CreateNativeJsonUtilityService();
        made =
            newInternal(Velmora::CreateBroadcastEvent(service, ToCppString(name), ToCppString(type),
                                                      ToCppString(source), *payload),
                        service);
      },
      [](Velmora::SdkError& failure) {
        Velmora::Log::Error("QEXExtensionEvent", "an event could not be made: %s", failure.what());
      });
  return made;
}

std::optional<std::string> QEXExtensionEvent::eventName() const {
  return event_ == nullptr ? std::nullopt : ToNSString(event_->GetName());
}

std::optional<std::string> QEXExtensionEvent::eventType() const {
  return ToNSString(Velmora::GetEventTypeAsString(event_));
}

std::optional<std::string> QEXExtensionEvent::eventSource() const {
  return ToNSString(Velmora::GetEventSourceAsString(event_));
}

Platform::Value QEXExtensionEvent::eventData() const {
  const std::string text = Velmora::GetEventDataAsString(event_, json_utility_service_);
  const std::optional<std::string_view> payload = Velmora::ToNSStringView(text);
  if (!payload.has_value()) return {};
  return Platform::Host::Current()->jsonSerialization->Parse(*payload, nullptr);
}

std::shared_ptr<Velmora::Event> QEXExtensionEvent::getInternalEvent() const { return event_; }
