#include "modules/LifecycleModule.h"

#include <optional>
#include <string>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/ValueReader.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Lifecycle";

}  // namespace

std::string LifecycleModule::GetName() const { return EventTypes::kLifecycle; }

void LifecycleModule::Attach(HubContext& hub) {
  hub_ = &hub;
  hub.Listen(EventTypes::kLifecycle, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
}

void LifecycleModule::OnRequest(const EventPointer& event) {
  const std::string phase = ValueReader(*event).Text(EventKeys::kPhase).value_or("");
  if (phase == Phases::kStart) {
    OnStart(event);
  } else if (phase == Phases::kPause) {
    OnPause(event);
  } else {
    Log::Debug(kLogTag, "the request \"%s\" asks for nothing that is known",
               event->GetName().c_str());
  }
}

void LifecycleModule::OnStart(const EventPointer& event) {
  if (std::exchange(isStarted_, true)) {
    Log::Debug(kLogTag, "started while running; only the context data are renewed");
  }
  VariantMap context = ValueReader(*event).Map(EventKeys::kContextData).value_or(VariantMap());
  context.merge(DeviceContext());
  Tell({{EventKeys::kPhase, Variant::FromString(Phases::kStart)},
        {EventKeys::kContextData, Variant::FromVariantMap(std::move(context))}},
       event);
}

void LifecycleModule::OnPause(const EventPointer& event) {
  if (!std::exchange(isStarted_, false)) {
    Log::Debug(kLogTag, "paused without having been started");
    return;
  }
  Tell({{EventKeys::kPhase, Variant::FromString(Phases::kPause)}}, event);
}

void LifecycleModule::Tell(const VariantMap& state, const EventPointer& event) {
  if (const auto text =
          JsonText::Write(hub_->Services(), state, kLogTag, "the lifecycle cannot be shared")) {
    hub_->SetSharedState(*text, event);
  }
  hub_->Dispatch(std::make_shared<Event>("lifecycle changed", EventTypes::kLifecycle,
                                         EventSources::kResponse,
                                         std::make_shared<EventData>(state)));
}

VariantMap LifecycleModule::DeviceContext() const {
  const std::shared_ptr<SystemInfoServiceInterface> info = hub_->Services().GetSystemInfoService();
  if (info == nullptr) {
    Log::Warning(kLogTag,
                 "there is no system information service; context data tell nothing of "
                 "the device");
    return {};
  }
  return {
      {"appName", Variant::FromString(info->GetApplicationName())},
      {"appVersion", Variant::FromString(info->GetApplicationVersionCode())},
      {"appBuild", Variant::FromString(info->GetApplicationVersion())},
      {"carrier", Variant::FromString(info->GetMobileCarrierName())},
      {"device", Variant::FromString(info->GetDeviceName())},
      {"osName", Variant::FromString(info->GetOperatingSystemName())},
      {"osVersion", Variant::FromString(info->GetOperatingSystemVersion())},
      {"runMode", Variant::FromString(info->GetRunMode())},
  };
}

}  // namespace Velmora
