#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "hub/EventHubLimits.h"
#include "hub/SerialQueue.h"

namespace Velmora {

class EventHub;

// One external module in the hub: its listeners, and a queue whose thread makes every call of the
// module and of its listeners, so that a slow module delays nobody else.
//
// May be used on any thread. Life: made, Start (OnRegister, then events), Stop (OnUnregistered for
// each listener, OnUnregister), after which the hub is told. Each callback that throws gives one
// error line and, save the last, is told to the module as an unexpected error.
class ExternalModuleHost : public std::enable_shared_from_this<ExternalModuleHost> {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  // `acceptedCount` is the number of the last event before the module's registration.
  ExternalModuleHost(std::shared_ptr<ExternalModuleInterface> module, std::string name,
                     const std::shared_ptr<EventHub>& hub, std::int64_t acceptedCount,
                     const EventHubLimits& limits);

  const std::string& Name() const { return name_; }
  std::shared_ptr<EventHub> Hub() const { return hub_.lock(); }
  bool IsActive() const { return isActive_.load(); }

  // Throws std::system_error when no thread can be had. Does nothing, and gives false, after Stop.
  bool Start();

  // In the place of a Start that could not be: tells the module why, on this thread, and lets it
  // go.
  void Abandon(SdkError error);

  // Queues an event of so many bytes, numbered by the hub, when a listener may want it. Called on
  // the hub's thread, in order.
  void Offer(const std::string& topic, const std::shared_ptr<Event>& event, std::size_t bytes);

  // Adds a listener that hears events accepted from now on; one that is added while the module is
  // being registered hears those accepted since its registration. An empty topic stands for every
  // event; for any other, the listener before is replaced, once it has heard what waits for it, and
  // until then both count. Left when the module is leaving.
  enum class Addition { Added, Full, Left };
  Addition AddListener(std::shared_ptr<ExternalModuleListenerInterface> listener,
                       const std::string& topic);

  // Calls `done`, on this or on the module's thread, when OnRegister has returned, or when there
  // will be no registration; never when the module was stopped before.
  void CallWhenRegistered(std::function<void()> done);

  // The module is registered, or will not be: nobody waits for that any longer.
  void FinishRegistering();

  // The module leaves: it hears nothing more, and no listener is added any more.
  void Deactivate();

  // Runs `action`, which must not call out, unless the module has left, and keeps it from leaving
  // meanwhile. False when it has left.
  bool WhileActive(const std::function<void()>& action);

  // Deactivates, drops the events that wait, and returns how many. The module is told on its own
  // thread, after the call that is under way.
  std::size_t Stop();

  bool WaitUntilIdle(Deadline deadline);
  void Join();

  // The key of an event type and source in a table of listeners.
  static std::string Topic(const std::string& type, const std::string& source);

 private:
  struct Listener {
    std::shared_ptr<ExternalModuleListenerInterface> target;
    std::int64_t firstNumber = 0;
    bool isTold = false;  // of its registration; for the module's thread only
  };
  using ListenerPointer = std::shared_ptr<Listener>;

  // An event to hear, or something else to do.
  struct Task {
    std::shared_ptr<Event> event;
    std::function<void()> action;
  };

  void NameThread() const;
  void Register();
  void Handle(Task task);
  void Hear(const std::shared_ptr<Event>& event);
  void Do(std::function<void()> action);
  void Replace(const std::string& topic, const ListenerPointer& added);
  void TellRegistered(const ListenerPointer& listener);
  void TellUnregistered(const ListenerPointer& listener);
  void End();
  std::vector<ListenerPointer> ListenersFor(const Event& event);
  std::vector<ListenerPointer> TakeListeners();
  void Guard(const char* operation, const std::function<void()>& call);
  void TellOfError(SdkError& error);
  void LogFailure(const char* operation, const SdkError& error) const;

  std::shared_ptr<ExternalModuleInterface> module_;  // for the module's thread only
  const std::string name_;
  const std::weak_ptr<EventHub> hub_;
  const std::int64_t acceptedCount_;
  const std::size_t mostListeners_;
  std::atomic<bool> isActive_{true};
  bool isTold_ = false;  // of its registration; for the module's thread only

  std::mutex mutex_;
  bool isRegistering_ = true;
  std::size_t listenerCount_ = 0;  // those that wait to replace another one included
  std::unordered_map<std::string, ListenerPointer> listeners_;  // by topic
  std::vector<ListenerPointer> wildcardListeners_;
  std::vector<ListenerPointer> addedWhileRegistering_;
  std::vector<std::function<void()>> whenRegistered_;

  SerialQueue<Task> queue_;
};

}  // namespace Velmora
