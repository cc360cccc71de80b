#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "hub/ExternalModuleHost.h"

namespace Velmora {

// Which modules a hub has, by name. Names are compared byte by byte. May be used on any thread;
// calls nothing of a module.
//
// A module that leaves frees its name at once, but the next one of that name may not start before
// its predecessor has ended: both may be the same object.
class ModuleRegistry {
 public:
  using HostPointer = std::shared_ptr<ExternalModuleHost>;
  using Hosts = std::vector<HostPointer>;

  ModuleRegistry();

  // Keeps a name for a module of the hub's own. False when it is taken.
  bool Reserve(const std::string& name);

  enum class Addition { Taken, MayStart, MustWait, Closed };
  Addition Add(const HostPointer& host);

  // From now on nothing is added any more. All() then holds whatever was.
  void Close();

  // Takes back an addition that has not been started.
  void Discard(const HostPointer& host);

  // The module leaves. False when it had left already. One that still waits for its predecessor has
  // nothing to end, so that nobody waits for it in turn.
  bool Remove(const HostPointer& host);

  // The module's thread is at its end. Returns the one that waited for it, which may now start.
  HostPointer OnEnded(const HostPointer& host);

  // Those that hear events, in the order of their registration.
  std::shared_ptr<const Hosts> Active() const;

  // Those that have ended and are not yet joined, once.
  Hosts TakeEnded();

  // All that there are: active, leaving and ended.
  Hosts All() const;

 private:
  struct Slot {
    bool isBuiltIn = false;
    HostPointer active;
    HostPointer leaving;
  };

  void Deactivate(Slot& slot);

  mutable std::mutex mutex_;
  bool isClosed_ = false;
  std::map<std::string, Slot> slots_;
  std::shared_ptr<const Hosts> active_;  // replaced, never changed
  Hosts ended_;
};

}  // namespace Velmora
