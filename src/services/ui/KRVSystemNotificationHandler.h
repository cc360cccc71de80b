#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/NotificationCenter.h"
#include "VelmoraCore/AppState.h"
#include "VelmoraCore/AppStateListenerInterface.h"
#include "services/ui/AppStateHandler.h"

// Follows the notices about the application's life, and knows whether it is in the foreground.
//
// The state may be asked for on any thread. Listeners are called on the thread that posts a notice;
// register and unregister them where that does not happen at the same time.
class KRVSystemNotificationHandler {
 public:
  using Listener = std::shared_ptr<Velmora::AppStateListenerInterface>;

  // The one of the process, made at the first call with the device of that time. It is never
  // destroyed. Throws what the device throws; the next call then tries again.
  static KRVSystemNotificationHandler& sharedInstance();

  KRVSystemNotificationHandler() = default;
  KRVSystemNotificationHandler(const KRVSystemNotificationHandler&) = delete;
  KRVSystemNotificationHandler& operator=(const KRVSystemNotificationHandler&) = delete;

  // Begins to observe the notices of launch, background and foreground, in that order, at the
  // installed device's notification centre; until this object goes.
  void init();

  Velmora::AppState getAppState() const;

  // An empty listener changes nothing.
  void registerListener(const Listener& listener);
  void unregisterListener(const Listener& listener);
  std::size_t getNumListeners() const;

  // What a notice changes. Launches for a change of place or a download change nothing and are
  // logged; notices of other names do nothing.
  void handleAppNotification(const Platform::Notification& notification);

 private:
  void registerForNotification(const std::string& name);
  void FinishLaunching();
  void Enter(Velmora::AppState state);

  const std::shared_ptr<Velmora::AppStateHandler> appStateHandler_ =
      std::make_shared<Velmora::AppStateHandler>();
  std::vector<std::unique_ptr<Platform::NotificationObservation>> observations_;
};
