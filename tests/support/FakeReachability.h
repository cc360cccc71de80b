#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "QEXCore_iOS/Platform/Reachability.h"
#include "support/Guarded.h"

namespace TestSupport {

class FakeReachability final : public Platform::NetworkReachability {
 public:
  // What probes made from now on read; nothing: flags that cannot be read.
  void SetFlags(std::optional<std::uint32_t> flags) { flags_.Set(flags); }

  // False: no probe can be made.
  void SetCanCreateProbes(bool can) { canCreateProbes_.Set(can); }

  std::unique_ptr<Platform::ReachabilityProbe> CreateInternetProbe() const override;

 private:
  Guarded<std::optional<std::uint32_t>> flags_{Platform::kReachabilityFlagReachable};
  Guarded<bool> canCreateProbes_{true};
};

}  // namespace TestSupport
