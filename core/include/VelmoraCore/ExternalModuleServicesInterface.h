#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// What the hub does for one external module. Made by the hub and handed to the module when it is
// registered; may be used on any thread, also from inside a listener. Every failure is thrown as an
// SdkError with an "external_module." code; once the module has left, every operation but the last
// fails.
class VELMORA_CORE_API ExternalModuleServicesInterface : public virtual ObjectInterface {
 public:
  ~ExternalModuleServicesInterface() override;

  // `listener` hears every event of exactly this type and source from now on; a listener registered
  // before for the same pair is replaced.
  virtual void RegisterListener(const std::shared_ptr<ExternalModuleListenerInterface>& listener,
                                const std::string& eventType, const std::string& eventSource) = 0;

  // `listener` hears every event of the hub.
  virtual void RegisterWildcardListener(
      const std::shared_ptr<ExternalModuleListenerInterface>& listener) = 0;

  // Publishes the module's state as of `event` (as of now when the pointer is empty or the event
  // has no number yet). `stateJson` is a JSON object; the empty text publishes a state that is
  // pending.
  virtual void SetSharedEventState(const std::string& stateJson,
                                   const std::shared_ptr<Event>& event) = 0;

  // Forgets every state that the module has published.
  virtual void ClearSharedEventStates() = 0;

  // The state of the module named `stateOwner` as of `event` (the latest when the pointer is empty
  // or the event has no number yet), as JSON text; an empty pointer when it has none.
  virtual std::shared_ptr<std::string> GetSharedEventState(const std::string& stateOwner,
                                                           const std::shared_ptr<Event>& event) = 0;

  // The module leaves the hub. Does nothing when it has left already.
  virtual void UnregisterExtension() = 0;
};

}  // namespace Velmora
