#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/Value.h"
#include "platform/linux/DesktopNotification.h"

namespace Platform {

// Shows notifications at their time, through the desktop's notification service on the session's
// message bus. Safe from any thread.
//
// What waits is kept in a file. Nothing else exists until a notification is scheduled or there are
// some to resume; then a thread named "QEXNotify" waits for the times, speaks to the service and
// hears of clicks, until the notifier goes. A notification that the service does not take is lost,
// with a line on the system log. Of several processes of a program, one shows each.
class DesktopNotifier {
 public:
  struct Settings {
    std::string busAddress;  // empty: the session bus
    std::string folder;      // for what waits
    std::function<std::string()> applicationName;
    std::function<double()> now;  // seconds since 1970-01-01 UTC

    // A notification was clicked; called on the notifier's thread with its user information.
    std::function<void(const Value&)> activated;

    // How long the thread waits at most before it looks at the clock again: clocks are set.
    std::chrono::milliseconds longestWait{30'000};
  };

  DesktopNotifier(Settings settings, std::shared_ptr<SystemLog> systemLog);

  // Waits for the thread, which gives up what it is doing.
  ~DesktopNotifier();
  DesktopNotifier(const DesktopNotifier&) = delete;
  DesktopNotifier& operator=(const DesktopNotifier&) = delete;

  // The user's session, the program's own folder in `XDG_DATA_HOME`, the system's clock; a click
  // opens the program's desktop entry. `applicationName` is called when it is first needed.
  static Settings DefaultSettings(std::function<std::string()> applicationName);

  // True when there is a message bus to ask, whether or not it answers.
  bool HasBus() const;

  double Now() const { return settings_.now(); }

  // Keeps the notification until it is due. Throws Platform::DeviceError when it cannot be kept.
  void Schedule(const DesktopNotification& notification);

  // Forgets a notification that waits. Throws Platform::DeviceError when that cannot be written.
  void Cancel(const std::string& key);

  // Takes up what earlier processes left waiting. Never throws.
  void ResumePending() noexcept;

 private:
  class Loop;

  Loop& RunningLoop();

  const Settings settings_;
  const std::shared_ptr<SystemLog> systemLog_;
  std::mutex mutex_;
  std::unique_ptr<Loop> loop_;  // guarded by mutex_; once made, it stays
};

}  // namespace Platform
