#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The bits that a probe may set.
enum ReachabilityFlags : std::uint32_t {
  kReachabilityFlagReachable = 2,
  kReachabilityFlagConnectionRequired = 4,
};

// One look at whether the internet can be reached. Belongs to one caller at a time.
class QEXCORE_API ReachabilityProbe {
 public:
  virtual ~ReachabilityProbe();

  // Bits of ReachabilityFlags; nothing when they cannot be read.
  virtual std::optional<std::uint32_t> Flags() const = 0;
};

// Makes probes. Safe from any thread; never waits for the network.
class QEXCORE_API NetworkReachability {
 public:
  virtual ~NetworkReachability();

  // A probe for the internet as a whole; null when none can be made.
  virtual std::unique_ptr<ReachabilityProbe> CreateInternetProbe() const = 0;
};

}  // namespace Platform
