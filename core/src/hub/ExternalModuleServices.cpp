#include "hub/ExternalModuleServices.h"

#include <optional>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"
#include "hub/EventHub.h"
#include "hub/EventRules.h"

namespace Velmora {
namespace {

constexpr const char* kSourceLocation = "src/hub/ExternalModuleServices";

[[noreturn]] void ThrowNotRegistered(int line) {
  throw SdkError(ErrorCodes::kExternalModuleNotRegistered, "the module is not registered",
                 DebugInfo(kSourceLocation, line));
}

// A module that is in the hub, and the hub.
struct Registered {
  explicit Registered(const std::weak_ptr<ExternalModuleHost>& candidate) : host(candidate.lock()) {
    if (host != nullptr && host->IsActive()) hub = host->Hub();
    if (hub == nullptr) ThrowNotRegistered(__LINE__);
  }

  // The module may leave at any time; what it leaves behind must not come after that.
  void DoWhileActive(const std::function<void()>& action) const {
    if (!host->WhileActive(action)) ThrowNotRegistered(__LINE__);
  }

  std::shared_ptr<ExternalModuleHost> host;
  std::shared_ptr<EventHub> hub;
};

}  // namespace

ExternalModuleServices::ExternalModuleServices(std::weak_ptr<ExternalModuleHost> host)
    : host_(std::move(host)) {}

void ExternalModuleServices::RegisterListener(
    const std::shared_ptr<ExternalModuleListenerInterface>& listener, const std::string& eventType,
    const std::string& eventSource) {
  if (std::optional<SdkError> error = EventRules::CheckTypeAndSource(eventType, eventSource)) {
    throw SdkError(*error);
  }
  AddListener(listener, ExternalModuleHost::Topic(eventType, eventSource));
}

void ExternalModuleServices::RegisterWildcardListener(
    const std::shared_ptr<ExternalModuleListenerInterface>& listener) {
  AddListener(listener, "");
}

void ExternalModuleServices::AddListener(
    const std::shared_ptr<ExternalModuleListenerInterface>& listener, const std::string& topic) {
  if (listener == nullptr) {
    throw SdkError(ErrorCodes::kExternalModuleListenerWasNull, "there is no listener",
                   DebugInfo(kSourceLocation, __LINE__));
  }
  switch (Registered(host_).host->AddListener(listener, topic)) {
    case ExternalModuleHost::Addition::Added:
      return;
    case ExternalModuleHost::Addition::Full:
      throw SdkError(ErrorCodes::kExternalModuleTooManyListeners,
                     "the module has too many listeners", DebugInfo(kSourceLocation, __LINE__));
    case ExternalModuleHost::Addition::Left:
      ThrowNotRegistered(__LINE__);
  }
}

void ExternalModuleServices::SetSharedEventState(const std::string& stateJson,
                                                 const std::shared_ptr<Event>& event) {
  const Registered registered(host_);
  auto text = std::make_shared<const std::string>(stateJson);
  bool isTaken = false;
  registered.DoWhileActive([&] {
    isTaken = registered.hub->SetSharedState(registered.host->Name(), std::move(text), event);
  });
  if (!isTaken) {
    throw SdkError(ErrorCodes::kExternalModuleEventDataNotSupported, "the state is too long",
                   DebugInfo(kSourceLocation, __LINE__));
  }
}

void ExternalModuleServices::ClearSharedEventStates() {
  const Registered registered(host_);
  registered.DoWhileActive([&] { registered.hub->ClearSharedStates(registered.host->Name()); });
}

std::shared_ptr<std::string> ExternalModuleServices::GetSharedEventState(
    const std::string& stateOwner, const std::shared_ptr<Event>& event) {
  const std::shared_ptr<const std::string> text =
      Registered(host_).hub->GetSharedState(stateOwner, event);
  return text == nullptr ? nullptr : std::make_shared<std::string>(*text);
}

void ExternalModuleServices::UnregisterExtension() {
  const std::shared_ptr<ExternalModuleHost> host = host_.lock();
  if (host == nullptr) return;
  if (const std::shared_ptr<EventHub> hub = host->Hub()) hub->UnregisterModule(host);
}

}  // namespace Velmora
