#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Application.h"
#include "QEXCore_iOS/Platform/NotificationCenter.h"
#include "platform/gtk/GlibTimer.h"
#include "platform/gtk/Signal.h"
#include "platform/gtk/Toplevels.h"

namespace Platform {

// The life of the application, read off its windows, and told through the notification centre on
// the main queue.
//
// It is in front while one of its windows or dialogs is active; until the first has been, while one
// is to be seen. It is in the background when it has not been in front for a moment: when a dialog
// takes over from its window, for a short time neither is active. That time is the window
// manager's, so the moment is longer when a window has just come or gone and another one can be
// seen.
class Gtk4Life {
 public:
  // Must be made and go on the main queue's thread. `application` may be null.
  Gtk4Life(GtkApplication* application, std::shared_ptr<NotificationCenter> notificationCenter);

  // Safe from any thread.
  ApplicationState State() const { return state_; }

 private:
  using Clock = std::chrono::steady_clock;

  std::vector<SignalConnection> Follow(GtkWindow* window);
  void AwaitLaunch(GtkApplication* application);
  void FinishLaunching();
  void Update();
  bool IsInFront();
  void AwaitBackground();
  void EnterForeground();
  void EnterBackground();
  void Post(const char* name);

  const std::shared_ptr<NotificationCenter> notificationCenter_;
  std::atomic<ApplicationState> state_{ApplicationState::Active};

  // These belong to the main queue.
  bool hasLaunched_ = false;
  bool hasBeenActive_ = false;
  Clock::time_point inactiveSince_;
  Clock::time_point focusMovesUntil_;
  GlibTimer launch_;
  GlibTimer grace_;
  SignalConnection onStartup_;
  ToplevelWatch windows_;
};

}  // namespace Platform
