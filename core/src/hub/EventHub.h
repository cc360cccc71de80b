#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/SdkError.h"
#include "base/Clock.h"
#include "hub/EventHubLimits.h"
#include "hub/HubModule.h"
#include "hub/ModuleRegistry.h"
#include "hub/ResponseWaiters.h"
#include "hub/SerialQueue.h"
#include "hub/SharedStates.h"

namespace Velmora {

// Takes events from any thread, numbers them from 1 in the order in which they were accepted, and
// brings them in that order to the modules that listen.
//
// Threads: "VelmoraEventHub" handles the events and runs the core's own modules; every external
// module has a thread named after it (see ExternalModuleHost); "VelmoraCallback" calls the
// functions that callers passed in; "VelmoraClock" waits for the times that modules ask for. Every
// operation may be called on any thread, these included, and returns at once, save Dispose. No lock
// is held while calling out. Locks are taken in this order: a module's, then a queue's or that of
// the shared states.
//
// What types, sources, data and module names must look like stands in EventRules. Refusals that the
// caller cannot see are counted and reported in one warning once there is room again.
//
// A shared state that is set or cleared gives an event of type "hub" and source "sharedState",
// which its owner does not hear.
class EventHub : public std::enable_shared_from_this<EventHub> {
 public:
  // The last owner of what Create returns disposes the hub, waiting for no event. Without a `clock`
  // the hub's modules have the system's.
  static std::shared_ptr<EventHub> Create(std::shared_ptr<PlatformServicesInterface> services,
                                          EventHubLimits limits = {},
                                          std::shared_ptr<Clock> clock = nullptr);

  EventHub(std::shared_ptr<PlatformServicesInterface> services, EventHubLimits limits,
           std::shared_ptr<Clock> clock);
  EventHub(const EventHub&) = delete;
  EventHub& operator=(const EventHub&) = delete;

  // Adds one of the core's own modules. Throws an SdkError and adds nothing when the hub has been
  // started ("event_hub.already_started") or disposed ("event_hub.disposed"), and when there is a
  // module of this name ("external_module.dup_module_name").
  void AddModule(std::unique_ptr<HubModule> module);

  // Begins to handle events, once; a second call does nothing. Events may be dispatched before.
  // Throws std::system_error when no thread can be had.
  void Start();

  // Accepts an event from outside, or says why not: what EventRules::Check says, then
  // "event_hub.disposed" or "event_hub.queue_full". `onResponse`, when there is one, is called
  // once, with the first answer.
  std::optional<SdkError> Dispatch(const std::shared_ptr<Event>& event,
                                   ResponseWaiters::Callback onResponse = nullptr);

  // Accepts a request of the core's own, unchecked. It finds room where events from outside and
  // reports have taken all of theirs, so that no flood of those can drown it. Refusals are counted
  // when that is full too; a disposed hub ignores the request, with a debug line.
  void Post(const std::shared_ptr<Event>& event, ResponseWaiters::Callback onResponse = nullptr);

  // The same for what an app reports as often as it likes: it shares the room of events from
  // outside.
  void PostReport(const std::shared_ptr<Event>& event);

  // As Post; calls `whenDone` once everything that was accepted before has been handled and every
  // module registered before has been told of its registration.
  void PostAndFollow(const std::shared_ptr<Event>& event, std::function<void()> whenDone);

  // Adds an external module, or says why not: "external_module.bad_module_name" (also without a
  // module), "external_module.dup_module_name", "event_hub.disposed", or "std.exception" when no
  // thread can be had.
  std::optional<SdkError> RegisterModule(const std::shared_ptr<ExternalModuleInterface>& module);

  // The module hears nothing more and its states go, which the others are told; the rest happens on
  // its own thread. Does nothing when it has left already.
  void UnregisterModule(const std::shared_ptr<ExternalModuleHost>& host);

  // States count from `event`, or from the next event accepted when it is empty or unnumbered.
  // False when the text is too long. For an external module, to be called while it is kept active
  // (see ExternalModuleHost::WhileActive).
  bool SetSharedState(const std::string& owner, std::shared_ptr<const std::string> json,
                      const std::shared_ptr<Event>& event);
  void ClearSharedStates(const std::string& owner);
  std::shared_ptr<const std::string> GetSharedState(const std::string& owner,
                                                    const std::shared_ptr<Event>& event) const;

  // Takes no more events from outside, handles those that wait, and what the core's own modules
  // make of them, until `timeout` has passed, drops the rest with one warning that counts them,
  // tells the modules, and joins every thread; a call that is under way is waited for. Only the
  // first call does anything. On one of the hub's own threads, what waits for that thread is
  // dropped at once, and the thread is joined when the hub goes.
  void Dispose(std::chrono::milliseconds timeout);

  // For the hub's own parts.
  std::int64_t AcceptedCount() const { return queue_.AcceptedCount(); }
  void NameThread(const std::string& name) const;
  void OnModuleEnded(const std::shared_ptr<ExternalModuleHost>& host);

 private:
  class ModuleContext;
  struct Item {
    std::shared_ptr<Event> event;  // none when there is only something to call
    std::function<void()> whenHandled;
    std::string deafModule;  // does not hear this event
    std::size_t bytes = 0;
  };
  struct OwnModule {
    std::string name;
    std::unique_ptr<ModuleContext> context;
    std::unique_ptr<HubModule> module;
  };
  struct OwnListener {
    std::string module;
    HubContext::Handler handler;
  };
  using Queue = SerialQueue<Item>;
  using CallbackQueue = SerialQueue<std::function<void()>>;

  static Item ItemOf(const std::shared_ptr<Event>& event, std::string deafModule = {});
  Queue::Outcome Push(Item item, Queue::Admission admission);
  bool PostItem(Item item, Queue::Admission admission);
  void PostFromInside(std::shared_ptr<Event> event, const std::string& deafModule);
  bool SetSharedStateFrom(std::int64_t number, const std::string& owner,
                          std::shared_ptr<const std::string> json);
  void AnnounceSharedState(const std::string& owner);
  std::optional<SdkError> StartModule(const std::shared_ptr<ExternalModuleHost>& host);

  // On the hub's thread.
  void Handle(const Item& item);
  void CallResponseWaiters(const std::shared_ptr<Event>& event, std::size_t bytes);
  void TellOfFirstEvent(const std::shared_ptr<Event>& event);
  void TellOwnModules(const std::string& topic, const std::shared_ptr<Event>& event) const;
  void EndOwnModules() const;
  void CallWhenModulesAreRegistered(const std::function<void()>& callback);

  void Call(std::function<void()> callback, std::size_t bytes = 0);
  void JoinAll();
  void JoinEnded();

  const std::shared_ptr<PlatformServicesInterface> services_;
  const EventHubLimits limits_;
  const std::shared_ptr<Clock> clock_;
  std::atomic<bool> isStarted_{false};
  std::atomic<bool> isDisposed_{false};

  SharedStates states_;
  ResponseWaiters responseWaiters_;
  ModuleRegistry modules_;
  std::vector<OwnModule> ownModules_;
  std::unordered_map<std::string, std::vector<OwnListener>> ownListeners_;  // by topic
  std::vector<OwnListener> ownWildcardListeners_;
  std::int64_t lastNumber_ = 0;  // for the hub's thread only
  // How many wait until modules are registered; grows on the hub's thread only.
  const std::shared_ptr<std::atomic<std::size_t>> followers_ =
      std::make_shared<std::atomic<std::size_t>>(0);

  CallbackQueue callbacks_;
  Queue queue_;
};

}  // namespace Velmora
