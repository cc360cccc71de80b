#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <set>

#include "VelmoraCore/AppState.h"
#include "VelmoraCore/AppStateListenerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Whether the application is in the foreground, and who wants to hear of it.
//
// The state may be read and set on any thread. The listeners have no lock: they may be changed on
// one thread at a time, and not while listeners are being notified on another.
class AppStateHandler final : public Object {
 public:
  using Listener = std::shared_ptr<AppStateListenerInterface>;

  AppStateHandler();

  AppState GetAppState() const;
  void SetAppState(AppState state);

  // Adding a listener again, or an empty one, changes nothing; nor does removing one that is not
  // there.
  void RegisterListener(const Listener& listener);
  void UnregisterListener(const Listener& listener);
  std::size_t GetNumListeners() const;

  // Tells every listener of `state`, in the order of their addresses. Listeners may come and go
  // meanwhile; that shows at the next notification.
  void NotifyListeners(AppState state);

 private:
  std::atomic<AppState> state_{AppState::Foreground};
  std::set<Listener> listeners_;  // ordered by address
};

}  // namespace Velmora
