#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Reachability.h"

namespace Velmora {

enum class ReachabilityStatus : int {
  NotReachable = 0,
  Reachable = 1,
  Unreadable = 2,  // the flags could not be read
};

// A probe of the way to the internet. Belongs to one caller at a time; never throws.
class Reachability {
 public:
  explicit Reachability(std::unique_ptr<Platform::ReachabilityProbe> probe);

  // A new probe, or null when the device can make none.
  static std::unique_ptr<Reachability> reachabilityForInternetConnection();

  // A way that first needs a connection to be made does not count as one.
  ReachabilityStatus reachabilityStatus() const;

 private:
  std::unique_ptr<Platform::ReachabilityProbe> probe_;
};

}  // namespace Velmora
