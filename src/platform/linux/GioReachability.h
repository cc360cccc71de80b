#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "QEXCore_iOS/Platform/Reachability.h"

namespace Platform {

class NetworkWatcher;

// Reachability as GIO's network monitor reports it: the kernel's routes, or NetworkManager's
// knowledge where that runs. The monitor is made at the first probe and followed until this object
// goes. A network behind a login page needs a connection; one with nothing but local routes is not
// reachable. A probe answers as things were when it was made.
class GioReachability final : public NetworkReachability {
 public:
  GioReachability();

  // Makes its watcher with `createWatcher`, once.
  explicit GioReachability(std::function<std::unique_ptr<NetworkWatcher>()> createWatcher);

  ~GioReachability() override;

  std::unique_ptr<ReachabilityProbe> CreateInternetProbe() const override;

 private:
  NetworkWatcher& Watcher() const;

  const std::function<std::unique_ptr<NetworkWatcher>()> createWatcher_;
  mutable std::once_flag watcherMade_;
  mutable std::unique_ptr<NetworkWatcher> watcher_;
};

}  // namespace Platform
