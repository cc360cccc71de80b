#include "hub/ModuleContext.h"

#include <utility>

namespace Velmora {

EventHub::ModuleContext::ModuleContext(EventHub& hub, std::string name)
    : hub_(hub), name_(std::move(name)) {}

void EventHub::ModuleContext::Listen(const std::string& type, const std::string& source,
                                     Handler handler) {
  hub_.ownListeners_[ExternalModuleHost::Topic(type, source)].push_back(
      {name_, std::move(handler)});
}

void EventHub::ModuleContext::ListenToAll(Handler handler) {
  hub_.ownWildcardListeners_.push_back({name_, std::move(handler)});
}

void EventHub::ModuleContext::Dispatch(std::shared_ptr<Event> event) {
  hub_.PostFromInside(std::move(event), "");
}

HubContext::Poster EventHub::ModuleContext::WayHome() {
  return [weakHub = hub_.weak_from_this()](std::function<void()> work) {
    const std::shared_ptr<EventHub> hub = weakHub.lock();
    if (hub == nullptr) return;
    hub->queue_.Push({nullptr, std::move(work), ""}, Queue::Admission::Always);
  };
}

bool EventHub::ModuleContext::SetSharedState(const std::string& json,
                                             const std::shared_ptr<Event>& event) {
  // In the order of handling, which that of acceptance may be far ahead of.
  const std::int64_t number = event == nullptr ? hub_.lastNumber_ + 1 : event->GetNumber();
  return hub_.SetSharedStateFrom(number, name_, std::make_shared<const std::string>(json));
}

std::shared_ptr<const std::string> EventHub::ModuleContext::GetSharedState(
    const std::string& owner, const std::shared_ptr<Event>& event) {
  return hub_.EventHub::GetSharedState(owner, event);
}

PlatformServicesInterface& EventHub::ModuleContext::Services() { return *hub_.services_; }

Clock& EventHub::ModuleContext::GetClock() { return *hub_.clock_; }

}  // namespace Velmora
