#pragma once

#include <functional>
#include <memory>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "base/Clock.h"

namespace Velmora {

// What the hub does for one of its own modules.
class HubContext {
 public:
  using Handler = std::function<void(const std::shared_ptr<Event>&)>;
  using Poster = std::function<void(std::function<void()> work)>;

  virtual ~HubContext() = default;

  // `handler` is called on the hub's thread with every event of this type and source. To be called
  // in HubModule::Attach only.
  virtual void Listen(const std::string& type, const std::string& source, Handler handler) = 0;

  // The same with every event there is, after those who listen to its type and source.
  virtual void ListenToAll(Handler handler) = 0;

  // Puts an event in line behind those that wait. One that finds no room is dropped and counted; an
  // answer to a request may use the room kept for requests.
  virtual void Dispatch(std::shared_ptr<Event> event) = 0;

  // A function that calls what it is given on the hub's thread, behind the events that wait; so a
  // module brings home what it did on another thread. It may be kept, and called on any thread, for
  // as long as one likes: once the hub is disposed it drops what it is given.
  virtual Poster WayHome() = 0;

  // Publishes the module's state as JSON text, valid from `event` on, or without one from the event
  // that is handled next. False, and the state before stays, when the text is too long.
  virtual bool SetSharedState(const std::string& json, const std::shared_ptr<Event>& event) = 0;

  // The state of a module as it stood at `event`, the same pointer as long as it is the same state;
  // an empty pointer when it had none.
  virtual std::shared_ptr<const std::string> GetSharedState(
      const std::string& owner, const std::shared_ptr<Event>& event) = 0;

  virtual PlatformServicesInterface& Services() = 0;

  // Its actions come on a thread of its own and must bring their work home; none comes once the hub
  // is disposed.
  virtual Clock& GetClock() = 0;
};

// A module of the core's own. Owned by the hub. Attach is called on the thread that makes the core;
// all else happens on the hub's thread, one call at a time. A call that throws gives one error
// line.
class HubModule {
 public:
  virtual ~HubModule() = default;

  // The module's name, which no other module may have, and the owner of its shared state.
  virtual std::string GetName() const = 0;

  // `hub` outlives the module.
  virtual void Attach(HubContext& hub) = 0;

  // Comes once, after everything else, on the thread that disposes the hub and before the services
  // are disposed; also when there never was an event. Not for long: the core's end waits for it.
  virtual void End() {}

  // Comes before any module's handler; what `event` is does not matter.
  virtual void BeforeFirstEvent([[maybe_unused]] const std::shared_ptr<Event>& event) {}
};

}  // namespace Velmora
