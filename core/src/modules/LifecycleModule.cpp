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
constexpr const char* kStoreName = "KorvoMobile_Lifecycle";
constexpr const char* kLaunchAction = "lifecycle";
constexpr const char* kTimeoutKey = "lifecycle.sessionTimeout";
constexpr std::int64_t kDefaultTimeout = 300;
constexpr StateReader::Range kTimeoutRange{0, std::int64_t{7} * 24 * 3600};

}  // namespace

LifecycleModule::LifecycleModule() : configuration_(EventTypes::kConfiguration, kLogTag) {}

std::string LifecycleModule::GetName() const { return EventTypes::kLifecycle; }

void LifecycleModule::Attach(HubContext& hub) {
  hub_ = &hub;
  hub.Listen(EventTypes::kLifecycle, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
}

void LifecycleModule::End() {
  if (!std::exchange(isStarted_, false)) return;
  record_->Pause(Now());
  SaveRecord();
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
  VariantMap launch;
  if (std::exchange(isStarted_, true)) {
    Log::Debug(kLogTag, "started while running; only the context data are renewed");
  } else {
    launch = BeginOrResume();
  }
  const bool isLaunch = !launch.empty();
  VariantMap context = ValueReader(*event).Map(EventKeys::kContextData).value_or(VariantMap());
  context.merge(std::move(launch));
  context.merge(record_->Facts(Now()));
  context.merge(DeviceContext());
  const std::shared_ptr<Variant> contextData = Variant::FromVariantMap(std::move(context));
  Tell({{EventKeys::kPhase, Variant::FromString(Phases::kStart)},
        {EventKeys::kContextData, contextData}},
       event);
  if (!isLaunch) return;
  EventData data;
  data.PutString(EventKeys::kAction, kLaunchAction);
  data.Put(EventKeys::kContextData, contextData);
  hub_->Dispatch(std::make_shared<Event>("track launch", EventTypes::kAnalytics,
                                         EventSources::kRequest,
                                         std::make_shared<EventData>(std::move(data))));
}

// What a launch has to tell; nothing when the last session goes on.
VariantMap LifecycleModule::BeginOrResume() {
  LoadRecord();
  const std::shared_ptr<SystemInfoServiceInterface> info = hub_->Services().GetSystemInfoService();
  const std::string version = info == nullptr ? "" : info->GetApplicationVersionCode();
  const std::int64_t now = Now();
  VariantMap launch;
  if (record_->IsWithinSession(now, SessionTimeout(), version)) {
    record_->Resume(now);
  } else {
    launch = record_->Launch(now, version);
  }
  SaveRecord();
  return launch;
}

void LifecycleModule::OnPause(const EventPointer& event) {
  if (!std::exchange(isStarted_, false)) {
    Log::Debug(kLogTag, "paused without having been started");
    return;
  }
  record_->Pause(Now());
  SaveRecord();
  Tell({{EventKeys::kPhase, Variant::FromString(Phases::kPause)}}, event);
}

void LifecycleModule::LoadRecord() {
  if (record_.has_value()) return;
  record_.emplace();
  const std::shared_ptr<LocalStorageServiceInterface> storage =
      hub_->Services().GetLocalStorageService();
  if (storage == nullptr) {
    Log::Warning(kLogTag, "there is no data store; sessions will not be remembered");
  } else {
    record_ = LifecycleRecord::Load(*storage->GetDataStore(kStoreName));
  }
}

void LifecycleModule::SaveRecord() const {
  const std::shared_ptr<LocalStorageServiceInterface> storage =
      hub_->Services().GetLocalStorageService();
  if (storage != nullptr) record_->Save(*storage->GetDataStore(kStoreName));
}

std::int64_t LifecycleModule::Now() const {
  return std::chrono::duration_cast<std::chrono::seconds>(hub_->GetClock().Now().time_since_epoch())
      .count();
}

std::chrono::seconds LifecycleModule::SessionTimeout() {
  configuration_.Refresh(*hub_);
  return std::chrono::seconds(configuration_.Number(kTimeoutKey, kDefaultTimeout, kTimeoutRange));
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
