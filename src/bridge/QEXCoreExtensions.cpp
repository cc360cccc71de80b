#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/QEXCore.h"
#include "QEXCore_iOS/QEXExtension.h"
#include "VelmoraCore/Core.h"
#include "bridge/HostCall.h"
#include "extension/ExtensionErrors.h"
#include "extension/ExtensionEvents.h"
#include "extension/ExternalModuleInterfaceWrapper.h"

using Velmora::GetEventFromQEXExtensionEvent;
using Velmora::GuardHostCall;

namespace {

using EventPointer = std::shared_ptr<QEXExtensionEvent>;

// Whether a request was refused, and why. Shared with the core, which may keep its error function
// for as long as it likes.
class Refusal {
 public:
  void Set(QEXExtensionError code) const { code_->store(static_cast<std::int64_t>(code)); }

  // For the core to call.
  std::function<void(Velmora::SdkError&)> ErrorFunction() const {
    return [refusal = *this](Velmora::SdkError& error) {
      refusal.Set(Velmora::GetQEXExtensionErrorFromErrorCodes(error.GetCode()));
    };
  }

  // True when there was none so far; otherwise tells why.
  bool IsNone(Platform::Error* error) const {
    const std::int64_t code = code_->load();
    if (code == kNone) return true;
    Velmora::StoreExtensionError(static_cast<QEXExtensionError>(code), error);
    return false;
  }

 private:
  static constexpr std::int64_t kNone = -1;
  std::shared_ptr<std::atomic<std::int64_t>> code_ =
      std::make_shared<std::atomic<std::int64_t>>(kNone);
};

// Runs a request and tells whether it was taken. Only what is refused before it returns counts.
bool Ask(const char* operation, Platform::Error* error,
         const std::function<void(const Refusal&)>& request) {
  const Refusal refusal;
  bool hasReturned = false;
  GuardHostCall(operation, [&] {
    request(refusal);
    hasReturned = true;
  });
  if (!hasReturned) refusal.Set(QEXExtensionError::unknown);
  return refusal.IsNone(error);
}

}  // namespace

bool QEXCore::registerExtension(const Platform::Class& extensionClass, Platform::Error* error) {
  return Ask("registerExtension", error, [&](const Refusal& refusal) {
    if (!extensionClass.isSubclassOf(Platform::ClassOf<QEXExtension>())) {
      return refusal.Set(QEXExtensionError::classIsNotAnExtension);
    }
    const auto module = Velmora::CreateExternalModuleInterface(extensionClass);
    if (module->GetModuleName().empty()) return refusal.Set(QEXExtensionError::badModuleName);
    GetCore()->RegisterExternalModule(module, refusal.ErrorFunction());
  });
}

bool QEXCore::dispatchEvent(const EventPointer& event, Platform::Error* error) {
  return Ask("dispatchEvent", error, [&](const Refusal& refusal) {
    GetCore()->DispatchEvent(GetEventFromQEXExtensionEvent(event), refusal.ErrorFunction());
  });
}

bool QEXCore::dispatchEventWithResponseCallback(
    const EventPointer& event, std::function<void(const EventPointer&)> responseCallback,
    Platform::Error* error) {
  return Ask("dispatchEventWithResponseCallback", error, [&](const Refusal& refusal) {
    std::function<void(const std::shared_ptr<Velmora::Event>&)> onResponse;
    if (responseCallback) {
      onResponse = [callback = std::move(responseCallback)](
                       const std::shared_ptr<Velmora::Event>& response) {
        GuardHostCall("the callback of dispatchEventWithResponseCallback",
                      [&] { callback(Velmora::CreateQEXExtensionEventFromEvent(response)); });
      };
    }
    GetCore()->DispatchEventWithResponseCallback(GetEventFromQEXExtensionEvent(event),
                                                 std::move(onResponse), refusal.ErrorFunction());
  });
}

bool QEXCore::dispatchResponseEvent(const EventPointer& responseEvent,
                                    const EventPointer& requestEvent, Platform::Error* error) {
  return Ask("dispatchResponseEvent", error, [&](const Refusal& refusal) {
    GetCore()->DispatchResponseEvent(GetEventFromQEXExtensionEvent(responseEvent),
                                     GetEventFromQEXExtensionEvent(requestEvent),
                                     refusal.ErrorFunction());
  });
}
