#include "QEXCore_iOS/QEXExtensionApi.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/TryCatch.h"
#include "extension/ExtensionApi.h"
#include "extension/ExtensionErrors.h"
#include "extension/ExtensionEvents.h"
#include "extension/ExternalModuleListenerInterfaceWrapper.h"
#include "interop/StringConversion.h"

using Velmora::CreateExternalModuleListenerInterface;
using Velmora::GetEventFromQEXExtensionEvent;
using Velmora::StoreExtensionError;
using Velmora::ToCppString;

namespace {

constexpr const char* kSourceLocation = "src/extension/QEXExtensionApi";

// The text under which a state crosses to the core: empty for a pending one, nothing for one that
// cannot be written.
std::optional<std::string> TextOfState(const Platform::Value& state) {
  if (state.IsAbsent()) return std::string();
  if (!state.IsDictionary()) return std::nullopt;
  return Platform::Host::Current()->jsonSerialization->Serialize(
      state, Platform::JsonLayout::Pretty, nullptr);
}

}  // namespace

QEXExtensionApi::QEXExtensionApi(
    const std::shared_ptr<QEXExtension>& extension,
    const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services)
    : extension_(extension), services_(services) {}

std::shared_ptr<QEXExtensionApi> QEXExtensionApi::initWithExtension(
    const std::shared_ptr<QEXExtension>& extension,
    const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services) {
  return std::shared_ptr<QEXExtensionApi>(new QEXExtensionApi(extension, services));
}

QEXExtensionApi::Link QEXExtensionApi::CurrentLink() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (services_ == nullptr) {
    throw Velmora::SdkError(Velmora::ErrorCodes::kExternalModuleNotRegistered,
                            "the extension has left the event hub",
                            Velmora::DebugInfo(kSourceLocation, __LINE__));
  }
  return {extension_, services_};
}

bool QEXExtensionApi::Attempt(const std::function<void(const Link&)>& attempt,
                              Platform::Error* error) const {
  bool isDone = false;
  Velmora::TryCatch(
      [&] {
        attempt(CurrentLink());
        isDone = true;
      },
      [&](Velmora::SdkError& failure) {
        StoreExtensionError(Velmora::GetQEXExtensionErrorFromErrorCodes(failure.GetCode()), error);
      });
  return isDone;
}

bool QEXExtensionApi::registerListener(const Platform::Class& listenerClass,
                                       const std::optional<std::string>& eventType,
                                       const std::optional<std::string>& eventSource,
                                       Platform::Error* error) {
  return Attempt(
      [&](const Link& link) {
        link.services->RegisterListener(
            CreateExternalModuleListenerInterface(link.extension, listenerClass),
            ToCppString(eventType), ToCppString(eventSource));
      },
      error);
}

bool QEXExtensionApi::registerWildcardListener(const Platform::Class& listenerClass,
                                               Platform::Error* error) {
  return Attempt(
      [&](const Link& link) {
        link.services->RegisterWildcardListener(
            CreateExternalModuleListenerInterface(link.extension, listenerClass));
      },
      error);
}

bool QEXExtensionApi::setSharedEventState(const Platform::Value& state,
                                          const std::shared_ptr<QEXExtensionEvent>& event,
                                          Platform::Error* error) {
  bool isDone = false;
  Attempt(
      [&](const Link& link) {
        const std::optional<std::string> text = TextOfState(state);
        if (!text.has_value()) {
          StoreExtensionError(QEXExtensionError::eventDataNotSupported, error);
          return;
        }
        link.services->SetSharedEventState(*text, GetEventFromQEXExtensionEvent(event));
        isDone = true;
      },
      error);
  return isDone;
}

bool QEXExtensionApi::clearSharedEventStates(Platform::Error* error) {
  return Attempt([](const Link& link) { link.services->ClearSharedEventStates(); }, error);
}

Platform::Value QEXExtensionApi::getSharedEventState(
    const std::optional<std::string>& stateOwner, const std::shared_ptr<QEXExtensionEvent>& event,
    Platform::Error* error) {
  Platform::Value state;
  Attempt(
      [&](const Link& link) {
        const std::shared_ptr<std::string> text = link.services->GetSharedEventState(
            ToCppString(stateOwner), GetEventFromQEXExtensionEvent(event));
        if (text == nullptr) return;
        // A pending state is the empty text, which is absent on the platform and cannot be parsed.
        if (const auto json = Velmora::ToNSStringView(*text)) {
          state = Platform::Host::Current()->jsonSerialization->Parse(*json, nullptr);
        }
        if (state.IsAbsent()) StoreExtensionError(QEXExtensionError::unknown, error);
      },
      error);
  return state;
}

void QEXExtensionApi::unregisterExtension() {
  // Swallowed: an extension that has left already, and what a core could throw. The app has no use
  // for either.
  Velmora::TrySwallow([this] { CurrentLink().services->UnregisterExtension(); });
  LetGo();
}

void QEXExtensionApi::LetGo() {
  Link former;  // goes after the lock
  const std::lock_guard<std::mutex> lock(mutex_);
  former.extension.swap(extension_);
  former.services.swap(services_);
}

namespace Velmora {

std::shared_ptr<QEXExtensionApi> CreateQEXExtensionApiFromExternalModuleServicesInterface(
    const std::shared_ptr<QEXExtension>& extension,
    const std::shared_ptr<ExternalModuleServicesInterface>& services) {
  return QEXExtensionApi::initWithExtension(extension, services);
}

}  // namespace Velmora
