#include "services/system/Reachability.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "services/system/AskHost.h"

namespace Velmora {

Reachability::Reachability(std::unique_ptr<Platform::ReachabilityProbe> probe)
    : probe_(std::move(probe)) {}

std::unique_ptr<Reachability> Reachability::reachabilityForInternetConnection() {
  return AskHost(
      [](const Platform::Host& host) -> std::unique_ptr<Reachability> {
        auto probe = host.reachability->CreateInternetProbe();
        return probe ? std::make_unique<Reachability>(std::move(probe)) : nullptr;
      },
      nullptr);
}

ReachabilityStatus Reachability::reachabilityStatus() const {
  using Flags = std::optional<std::uint32_t>;
  const Flags flags = AskHost([this](const Platform::Host&) { return probe_->Flags(); }, Flags());
  if (!flags) return ReachabilityStatus::Unreadable;
  const bool isReachable = (*flags & Platform::kReachabilityFlagReachable) != 0;
  const bool needsConnection = (*flags & Platform::kReachabilityFlagConnectionRequired) != 0;
  return isReachable && !needsConnection ? ReachabilityStatus::Reachable
                                         : ReachabilityStatus::NotReachable;
}

}  // namespace Velmora
