#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/ExternalModuleServicesInterface.h"
#include "VelmoraCore/Object.h"
#include "hub/ExternalModuleHost.h"

namespace Velmora {

// What an external module holds of the hub. Keeps nothing alive: once the module has left, or the
// hub is gone, every operation throws "external_module.not_registered", save UnregisterExtension,
// which then does nothing.
//
// Further errors: "external_module.listener_was_null", "external_module.too_many_listeners" (see
// EventHubLimits), "external_module.event_type_not_supported",
// "external_module.event_source_not_supported" (see EventRules), and
// "external_module.event_data_not_supported" for a state that is too long (see SharedStates).
class ExternalModuleServices final : public Object, public virtual ExternalModuleServicesInterface {
 public:
  explicit ExternalModuleServices(std::weak_ptr<ExternalModuleHost> host);

  void RegisterListener(const std::shared_ptr<ExternalModuleListenerInterface>& listener,
                        const std::string& eventType, const std::string& eventSource) override;
  void RegisterWildcardListener(
      const std::shared_ptr<ExternalModuleListenerInterface>& listener) override;

  // An event that no hub has numbered counts as none. The text itself is not parsed.
  void SetSharedEventState(const std::string& stateJson,
                           const std::shared_ptr<Event>& event) override;

  void ClearSharedEventStates() override;
  std::shared_ptr<std::string> GetSharedEventState(const std::string& stateOwner,
                                                   const std::shared_ptr<Event>& event) override;

  // Never throws. No event is delivered to the module after those that its thread is handling now.
  void UnregisterExtension() override;

 private:
  void AddListener(const std::shared_ptr<ExternalModuleListenerInterface>& listener,
                   const std::string& topic);

  const std::weak_ptr<ExternalModuleHost> host_;
};

}  // namespace Velmora
