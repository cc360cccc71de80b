#pragma once

#include <memory>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hears events for an external module. Shared by the hub from registration until unregistration.
// Called on the core's threads.
class VELMORA_CORE_API ExternalModuleListenerInterface : public virtual ObjectInterface {
 public:
  ~ExternalModuleListenerInterface() override;

  // The listener has been accepted; comes before the first event.
  virtual void OnRegistered() = 0;

  // One event of those asked for, in dispatch order.
  virtual void Hear(const std::shared_ptr<Event>& event) = 0;

  // No event follows. The last call.
  virtual void OnUnregistered() = 0;
};

}  // namespace Velmora
