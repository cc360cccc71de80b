#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"

namespace Platform {

// Follows a network monitor of its own on a thread named "QEXReachability", which lives from
// construction to destruction. (GIO's shared monitor reports only while the context runs in which
// it was first asked for, which belongs to whoever asked first; and whoever asks second hears its
// signals on that one's thread.)
class NetworkWatcher {
 public:
  // Makes the monitor, on the watcher's thread; null when there is none. It should heed the
  // cancellable, which fires when the watcher goes.
  using MonitorFactory = std::function<GObjectPointer<GNetworkMonitor>(GCancellable*)>;

  // Follows the best monitor that GIO has.
  NetworkWatcher();

  // Throws std::system_error when no thread can be started.
  explicit NetworkWatcher(MonitorFactory createMonitor);

  // Waits for the thread to end.
  ~NetworkWatcher();

  NetworkWatcher(const NetworkWatcher&) = delete;
  NetworkWatcher& operator=(const NetworkWatcher&) = delete;

  // Bits of ReachabilityFlags as the monitor last reported; nothing without a monitor. Safe from
  // any thread. Waits for the monitor to be made, but not beyond a quarter of a second after
  // construction; what is not known by then is nothing too.
  std::optional<std::uint32_t> Flags();

 private:
  void Run(const MonitorFactory& createMonitor);
  void Follow(GNetworkMonitor* monitor);
  void Publish(GNetworkMonitor* monitor);
  void SayReady();
  static void OnNetworkChanged(GNetworkMonitor* monitor, gboolean isAvailable,
                               NetworkWatcher* watcher) noexcept;
  static void OnConnectivityChanged(GNetworkMonitor* monitor, GParamSpec* property,
                                    NetworkWatcher* watcher) noexcept;

  const std::chrono::steady_clock::time_point patienceEnds_;
  const GMainContextPointer context_;
  const GObjectPointer<GCancellable> cancellable_;
  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::condition_variable becameReady_;
  bool ready_ = false;                  // guarded by mutex_
  std::optional<std::uint32_t> flags_;  // guarded by mutex_
  std::thread thread_;                  // last: it uses what stands above
};

}  // namespace Platform
