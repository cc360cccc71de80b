#pragma once

#include <memory>

#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "VelmoraCore/Event.h"

// Events between the core and extensions. Both may be called on any thread.
namespace Velmora {

// A public event, never null, with a JSON service of its own.
std::shared_ptr<QEXExtensionEvent> CreateQEXExtensionEventFromEvent(
    const std::shared_ptr<Event>& event);

// Empty for an absent event.
std::shared_ptr<Event> GetEventFromQEXExtensionEvent(
    const std::shared_ptr<QEXExtensionEvent>& extensionEvent);

}  // namespace Velmora
