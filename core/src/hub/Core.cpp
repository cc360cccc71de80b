#include "VelmoraCore/Core.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "hub/EventHub.h"
#include "modules/CoreModules.h"
#include "modules/PrivacyStatus.h"
#include "modules/ValueReader.h"

namespace Velmora {
namespace {

using ErrorFunction = std::function<void(SdkError&)>;
using Milliseconds = std::chrono::milliseconds;

constexpr const char* kLogTag = "Core";
constexpr const char* kSourceLocation = "src/hub/Core";
constexpr Milliseconds kDisposeTimeout{2'000};

void UseLoggingServiceOf(const PlatformServicesInterface& services) {
  if (std::shared_ptr<LoggingServiceInterface> logging = services.GetLoggingService()) {
    Log::SetLoggingService(std::move(logging));
  } else {
    Log::Warning(kLogTag, "the platform has no logging service");
  }
}

std::shared_ptr<Event> MakeEvent(std::string name, const char* type, const char* source,
                                 EventData data = {}) {
  return std::make_shared<Event>(std::move(name), type, source,
                                 std::make_shared<const EventData>(std::move(data)));
}

EventData One(const char* key, std::shared_ptr<Variant> value) {
  EventData data;
  data.Put(key, std::move(value));
  return data;
}

EventData One(const char* key, const StringMap& value) {
  EventData data;
  data.PutStringMap(key, value);
  return data;
}

SdkError EventWasNull(int line) {
  return {ErrorCodes::kExternalModuleEventWasNull, "there is no event",
          DebugInfo(kSourceLocation, line)};
}

// Tells who asked. The log hears of what nobody else hears, and of every request that came too
// late.
void Report(std::optional<SdkError> error, const ErrorFunction& onError) {
  if (!error.has_value()) return;
  if (!onError || error->GetCode() == ErrorCodes::kEventHubDisposed) {
    Log::Debug(kLogTag, "refused: %s", error->what());
  }
  if (onError) onError(*error);
}

}  // namespace

struct Core::Impl {
  Impl(std::shared_ptr<PlatformServicesInterface> platformServices,
       std::shared_ptr<EventHub> eventHub)
      : services(std::move(platformServices)), hub(std::move(eventHub)) {}

  void Request(std::string name, const char* type, EventData data = {}) const {
    hub->Post(MakeEvent(std::move(name), type, EventSources::kRequest, std::move(data)));
  }

  void Report(std::string name, const char* type, EventData data) const {
    hub->PostReport(MakeEvent(std::move(name), type, EventSources::kRequest, std::move(data)));
  }

  void Query(std::string name, const char* type, ResponseWaiters::Callback onResponse) const {
    hub->Post(MakeEvent(std::move(name), type, EventSources::kQuery), std::move(onResponse));
  }

  const std::shared_ptr<PlatformServicesInterface> services;
  const std::shared_ptr<EventHub> hub;
  std::atomic<bool> isDisposed{false};
};

std::shared_ptr<Core> Core::Create(const std::shared_ptr<PlatformServicesInterface>& services,
                                   const std::shared_ptr<EventHub>& eventHub) {
  if (services == nullptr) {
    throw SdkError(ErrorCodes::kPlatformServicesMissingService, "a core needs platform services",
                   DebugInfo(kSourceLocation, __LINE__));
  }
  const std::shared_ptr<EventHub> hub = eventHub ? eventHub : EventHub::Create(services);
  for (std::unique_ptr<HubModule>& module : CreateCoreModules()) hub->AddModule(std::move(module));
  hub->Start();
  // Only now: a core that could not be made must not leave its sink behind.
  UseLoggingServiceOf(*services);
  return std::shared_ptr<Core>(new Core(std::make_unique<Impl>(services, hub)));
}

Core::Core(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Core::~Core() { Dispose(); }

void Core::Dispose() {
  if (impl_->isDisposed.exchange(true)) return;
  const auto begin = std::chrono::steady_clock::now();
  impl_->hub->Dispose(kDisposeTimeout);
  const auto used =
      std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - begin);
  const Milliseconds left = std::max(kDisposeTimeout - used, Milliseconds::zero());
  TryCatch(
      [&] {
        if (!impl_->services->Dispose(left)) {
          Log::Warning(kLogTag, "the platform services were stopped with work left");
        }
      },
      [](SdkError& error) {
        Log::Error(kLogTag, "the platform services could not be disposed: %s", error.what());
      });
}

void Core::ConfigureWithAppId(const std::string& appId) const {
  impl_->Request("configure with app id", EventTypes::kConfiguration,
                 One(EventKeys::kAppId, Variant::FromString(appId)));
}

void Core::ConfigureWithFileInPath(const std::string& path) const {
  impl_->Request("configure with file", EventTypes::kConfiguration,
                 One(EventKeys::kFilePath, Variant::FromString(path)));
}

void Core::UpdateConfiguration(std::map<std::string, std::shared_ptr<Variant>> configuration) {
  impl_->Request("update configuration", EventTypes::kConfiguration,
                 One(EventKeys::kUpdate, Variant::FromVariantMap(std::move(configuration))));
}

void Core::GetSDKIdentities(const std::function<void(const std::string&)>& callback) const {
  if (!callback) return;
  impl_->Query("get identities", EventTypes::kIdentity,
               [callback](const std::shared_ptr<Event>& response) {
                 callback(ValueReader(*response).Text(EventKeys::kIdentities).value_or("{}"));
               });
}

void Core::GetPrivacyStatus(const std::function<void(const MobilePrivacyStatus&)>& callback) const {
  if (!callback) return;
  impl_->Query("get privacy status", EventTypes::kConfiguration,
               [callback](const std::shared_ptr<Event>& response) {
                 callback(PrivacyStatusOf(ValueReader(*response).Value(EventKeys::kPrivacyStatus)));
               });
}

void Core::SetPrivacyStatus(MobilePrivacyStatus status) const {
  const auto number = static_cast<std::int64_t>(status);
  impl_->Request("set privacy status", EventTypes::kConfiguration,
                 One(EventKeys::kPrivacyStatus, Variant::FromLong(number)));
}

void Core::RegisterExternalModule(const std::shared_ptr<ExternalModuleInterface>& module,
                                  std::function<void(SdkError&)> onError) {
  Report(impl_->hub->RegisterModule(module), onError);
}

void Core::Start(std::function<void()> callback) {
  impl_->hub->PostAndFollow(MakeEvent("start", EventTypes::kHub, EventSources::kBooted),
                            std::move(callback));
}

void Core::CollectPii(std::map<std::string, std::string> data) {
  impl_->Report("collect pii", EventTypes::kPii, One(EventKeys::kCollected, data));
}

void Core::LifecyclePause() {
  impl_->Request("lifecycle pause", EventTypes::kLifecycle,
                 One(EventKeys::kPhase, Variant::FromString(Phases::kPause)));
}

void Core::LifecycleStart(std::map<std::string, std::string> additionalContextData) {
  EventData data = One(EventKeys::kContextData, additionalContextData);
  data.PutString(EventKeys::kPhase, Phases::kStart);
  impl_->Request("lifecycle start", EventTypes::kLifecycle, std::move(data));
}

void Core::SetAdvertisingIdentifier(const std::string& identifier) {
  impl_->Request("set advertising identifier", EventTypes::kIdentity,
                 One(EventKeys::kAdvertisingIdentifier, Variant::FromString(identifier)));
}

void Core::SetPushIdentifier(const std::string& identifier) {
  impl_->Request("set push identifier", EventTypes::kIdentity,
                 One(EventKeys::kPushIdentifier, Variant::FromString(identifier)));
}

void Core::Track(const std::shared_ptr<EventData>& data) const {
  impl_->hub->PostReport(
      std::make_shared<Event>("track", EventTypes::kAnalytics, EventSources::kRequest, data));
}

void Core::DispatchEvent(const std::shared_ptr<Event>& event,
                         std::function<void(SdkError&)> onError) {
  Report(impl_->hub->Dispatch(event), onError);
}

void Core::DispatchEventWithResponseCallback(
    const std::shared_ptr<Event>& event,
    std::function<void(const std::shared_ptr<Event>&)> onResponse,
    std::function<void(SdkError&)> onError) {
  Report(impl_->hub->Dispatch(event, std::move(onResponse)), onError);
}

void Core::DispatchResponseEvent(const std::shared_ptr<Event>& response,
                                 const std::shared_ptr<Event>& request,
                                 std::function<void(SdkError&)> onError) {
  if (response == nullptr || request == nullptr) {
    Report(EventWasNull(__LINE__), onError);
  } else {
    Report(impl_->hub->Dispatch(response->AsResponseTo(*request)), onError);
  }
}

void Core::CollectData(std::map<std::string, std::shared_ptr<Variant>> data) {
  impl_->Report("collect data", EventTypes::kData,
                One(EventKeys::kCollected, Variant::FromVariantMap(std::move(data))));
}

void Core::DownloadRules() { impl_->Request("download rules", EventTypes::kRules); }

}  // namespace Velmora
