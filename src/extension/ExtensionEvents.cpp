#include "extension/ExtensionEvents.h"

#include "services/json/NativeJsonUtilityService.h"

namespace Velmora {

std::shared_ptr<QEXExtensionEvent> CreateQEXExtensionEventFromEvent(
    const std::shared_ptr<Event>& event) {
  return QEXExtensionEvent::newInternal(event, CreateNativeJsonUtilityService());
}

std::shared_ptr<Event> GetEventFromQEXExtensionEvent(
    const std::shared_ptr<QEXExtensionEvent>& extensionEvent) {
  return extensionEvent == nullptr ? nullptr : extensionEvent->getInternalEvent();
}

}  // namespace Velmora
