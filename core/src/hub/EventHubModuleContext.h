#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "hub/EventHub.h"
#include "hub/ExternalModuleHost.h"

namespace Velmora {

// The hub as one of its own modules sees it. Owned by the hub.
class EventHub::ModuleContext final : public HubContext {
 public:
  ModuleContext(EventHub& hub, std::string name) : hub_(hub), name_(std::move(name)) {}

  void Listen(const std::string& type, const std::string& source, Handler handler) override {
    hub_.ownListeners_[ExternalModuleHost::Topic(type, source)].push_back(
        {name_, std::move(handler)});
  }
  void ListenToAll(Handler handler) override {
    hub_.ownWildcardListeners_.push_back({name_, std::move(handler)});
  }
  void Dispatch(std::shared_ptr<Event> event) override {
    hub_.PostFromInside(std::move(event), "");
  }
  Poster WayHome() override {
    return [weakHub = hub_.weak_from_this()](std::function<void()> work) {
      const std::shared_ptr<EventHub> hub = weakHub.lock();
      if (hub == nullptr) return;
      hub->queue_.Push({nullptr, std::move(work), "", 0}, Queue::Admission::Always);
    };
  }
  bool SetSharedState(const std::string& json, const std::shared_ptr<Event>& event) override {
    // In the order of handling, which that of acceptance may be far ahead of.
    const std::int64_t number = event == nullptr ? hub_.lastNumber_ + 1 : event->GetNumber();
    return hub_.SetSharedStateFrom(number, name_, std::make_shared<const std::string>(json));
  }
  std::shared_ptr<const std::string> GetSharedState(const std::string& owner,
                                                    const std::shared_ptr<Event>& event) override {
    return hub_.EventHub::GetSharedState(owner, event);
  }
  PlatformServicesInterface& Services() override { return *hub_.services_; }
  Clock& GetClock() override { return *hub_.clock_; }

 private:
  EventHub& hub_;
  const std::string name_;
};

}  // namespace Velmora
