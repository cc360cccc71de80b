#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Class.h"
#include "QEXCore_iOS/QEXExtension.h"
#include "QEXCore_iOS/QEXExtensionListener.h"
#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Presents a listener of an extension to the core. Takes no locks: the core calls one operation at
// a time. Without an instance, before OnRegistered, after OnUnregistered, and of a class that gives
// none, events are heard by nobody.
class ExternalModuleListenerInterfaceWrapper : public Object,
                                               public virtual ExternalModuleListenerInterface {
 public:
  ExternalModuleListenerInterfaceWrapper(std::shared_ptr<QEXExtension> extension,
                                         const Platform::Class& listenerClass);

  void OnRegistered() override;
  void Hear(const std::shared_ptr<Event>& event) override;
  void OnUnregistered() override;

 private:
  std::shared_ptr<QEXExtension> extension_;
  const Platform::Class listenerClass_;
  std::shared_ptr<QEXExtensionListener> listener_;
};

std::shared_ptr<ExternalModuleListenerInterface> CreateExternalModuleListenerInterface(
    const std::shared_ptr<QEXExtension>& extension, const Platform::Class& listenerClass);

}  // namespace Velmora
