#pragma once

#include <cstddef>

#include "hub/SerialQueue.h"

namespace Velmora {

// How much a hub lets wait. What finds its queue full is refused, the ones before it stay. Bytes
// are those of the events and their data, which several queues may share.
struct EventHubLimits {
  static constexpr std::size_t kMiB = std::size_t{1} << 20;

  QueueRoom events{100'000, 64 * kMiB};        // accepted and not yet handled
  QueueRoom requests{10'000, 8 * kMiB};        // beyond those, for the core's own requests only
  QueueRoom moduleEvents{100'000, 64 * kMiB};  // the same, for each external module
  QueueRoom callbacks{100'000, 64 * kMiB};
  std::size_t responseWaiters = 10'000;  // see ResponseWaiters
  std::size_t moduleListeners = 10'000;  // of each external module
};

}  // namespace Velmora
