#pragma once

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"

namespace TestSupport {

struct NetworkCondition {
  bool isAvailable = true;
  GNetworkConnectivity connectivity = G_NETWORK_CONNECTIVITY_FULL;
};

// A network monitor in the given condition. Belongs to the thread that makes it.
Platform::GObjectPointer<GNetworkMonitor> NewFakeNetworkMonitor(const NetworkCondition& condition);

// Changes the condition of such a monitor and tells those who listen, on the calling thread, which
// must be the one that the monitor belongs to.
void ChangeNetwork(GNetworkMonitor* monitor, const NetworkCondition& condition);

}  // namespace TestSupport
