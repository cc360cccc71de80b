#pragma once

#include <memory>
#include <string>

#include "hub/EventHub.h"
#include "hub/HubModule.h"

namespace Velmora {

// What a hub does for the one of its own modules that has this name. Owned by the hub.
class EventHub::ModuleContext final : public HubContext {
 public:
  ModuleContext(EventHub& hub, std::string name);

  void Listen(const std::string& type, const std::string& source, Handler handler) override;
  void ListenToAll(Handler handler) override;
  void Dispatch(std::shared_ptr<Event> event) override;
  Poster WayHome() override;
  bool SetSharedState(const std::string& json, const std::shared_ptr<Event>& event) override;
  std::shared_ptr<const std::string> GetSharedState(const std::string& owner,
                                                    const std::shared_ptr<Event>& event) override;
  PlatformServicesInterface& Services() override;
  Clock& GetClock() override;

 private:
  EventHub& hub_;
  const std::string name_;
};

}  // namespace Velmora
