#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Class.h"
#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

class QEXExtension;
class QEXExtensionEvent;

namespace Velmora {
class ExternalModuleInterfaceWrapper;
class ExternalModuleServicesInterface;
}  // namespace Velmora

// An extension's way to the event hub, made by the SDK when the extension is registered.
//
// Any thread may call any operation, also from inside a listener. Operations run on the caller's
// thread, wait for nobody and throw nothing. Those that can fail say so in their result and, where
// `error` is given, in it: the domain is QEXExtensionErrorDomain, the codes are those of
// QEXExtensionError. Once the extension has left the hub they all fail with code 0.
//
// Texts end at their first zero byte; an absent one counts as empty.
class QEXCORE_API QEXExtensionApi {
 public:
  // For the SDK's own use.
  static std::shared_ptr<QEXExtensionApi> initWithExtension(
      const std::shared_ptr<QEXExtension>& extension,
      const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services);

  // An instance of the class, a QEXExtensionListener, hears every event of exactly this type and
  // source from now on; from the extension's init, every event since the registration. A listener
  // registered before for the same pair is replaced. Codes 3 and 4: the hub does not take this type
  // or source. Code 0 too when the extension has 10,000 listeners. The class is not checked: of one
  // that is no listener, nobody hears anything.
  bool registerListener(const Platform::Class& listenerClass,
                        const std::optional<std::string>& eventType,
                        const std::optional<std::string>& eventSource, Platform::Error* error);

  // The same for every event of the hub.
  bool registerWildcardListener(const Platform::Class& listenerClass, Platform::Error* error);

  // Publishes the extension's state: a dictionary, which counts from `event` on until the next
  // state, or from the next event to come when `event` is absent or has not been through the hub.
  // An absent `state` publishes that the state is pending. Code 5: the state cannot be written as
  // JSON, or its text is longer than 16 MiB.
  bool setSharedEventState(const Platform::Value& state,
                           const std::shared_ptr<QEXExtensionEvent>& event, Platform::Error* error);

  // Forgets every state that the extension has published.
  bool clearSharedEventStates(Platform::Error* error);

  // The state of the module of that name as it stood at `event`, or the newest when `event` is
  // absent or has not been through the hub. Absent without an error when the module has none;
  // absent with code 0 when it is pending or is no JSON text.
  Platform::Value getSharedEventState(const std::optional<std::string>& stateOwner,
                                      const std::shared_ptr<QEXExtensionEvent>& event,
                                      Platform::Error* error);

  // The extension leaves the hub: it hears no further event, its states go, and what it was told
  // to hold is let go. The call that its thread is in now still ends. A second call does nothing.
  void unregisterExtension();

 private:
  friend class Velmora::ExternalModuleInterfaceWrapper;

  struct Link {
    std::shared_ptr<QEXExtension> extension;
    std::shared_ptr<Velmora::ExternalModuleServicesInterface> services;
  };

  QEXExtensionApi(const std::shared_ptr<QEXExtension>& extension,
                  const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services);

  // Lets both go. The extension has left the hub, whether it asked to or not.
  void LetGo();

  // Throws an SdkError when the extension has left.
  Link CurrentLink() const;

  // Runs `attempt`; false, and an error stored, when it throws.
  bool Attempt(const std::function<void(const Link&)>& attempt, Platform::Error* error) const;

  mutable std::mutex mutex_;  // held while the two below are copied, never while calling out
  std::shared_ptr<QEXExtension> extension_;
  std::shared_ptr<Velmora::ExternalModuleServicesInterface> services_;
};
