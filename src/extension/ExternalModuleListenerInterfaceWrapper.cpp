#include "extension/ExternalModuleListenerInterfaceWrapper.h"

#include <utility>

#include "extension/ExtensionEvents.h"

namespace Velmora {

ExternalModuleListenerInterfaceWrapper::ExternalModuleListenerInterfaceWrapper(
    std::shared_ptr<QEXExtension> extension, const Platform::Class& listenerClass)
    : extension_(std::move(extension)), listenerClass_(listenerClass) {}

void ExternalModuleListenerInterfaceWrapper::OnRegistered() {
  listener_ = listenerClass_.alloc<QEXExtensionListener>();
  if (listener_ == nullptr) return;
  const std::shared_ptr<QEXExtensionListener> initialised =
      listener_->initWithExtension(extension_);
  listener_ = initialised == nullptr ? nullptr : initialised->init();
}

void ExternalModuleListenerInterfaceWrapper::Hear(const std::shared_ptr<Event>& event) {
  // Kept for the call, inside which a core may tell it that it is unregistered.
  const std::shared_ptr<QEXExtensionListener> listener = listener_;
  if (listener != nullptr) listener->hear(CreateQEXExtensionEventFromEvent(event));
}

void ExternalModuleListenerInterfaceWrapper::OnUnregistered() {
  listener_ = nullptr;
  extension_ = nullptr;
}

std::shared_ptr<ExternalModuleListenerInterface> CreateExternalModuleListenerInterface(
    const std::shared_ptr<QEXExtension>& extension, const Platform::Class& listenerClass) {
  return std::make_shared<ExternalModuleListenerInterfaceWrapper>(extension, listenerClass);
}

}  // namespace Velmora
