#include "platform/linux/GioReachability.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <utility>

#include "platform/linux/NetworkWatcher.h"

namespace Platform {
namespace {

class Snapshot final : public ReachabilityProbe {
 public:
  explicit Snapshot(std::optional<std::uint32_t> flags) : flags_(flags) {}

  std::optional<std::uint32_t> Flags() const override { return flags_; }

 private:
  const std::optional<std::uint32_t> flags_;
};

}  // namespace

GioReachability::GioReachability()
    : GioReachability([] { return std::make_unique<NetworkWatcher>(); }) {}

GioReachability::GioReachability(std::function<std::unique_ptr<NetworkWatcher>()> createWatcher)
    : createWatcher_(std::move(createWatcher)) {}

GioReachability::~GioReachability() = default;

std::unique_ptr<ReachabilityProbe> GioReachability::CreateInternetProbe() const {
  try {
    return std::make_unique<Snapshot>(Watcher().Flags());
  } catch (const std::exception&) {
    return nullptr;  // no thread could be started
  }
}

NetworkWatcher& GioReachability::Watcher() const {
  std::call_once(watcherMade_, [this] { watcher_ = createWatcher_(); });
  return *watcher_;
}

}  // namespace Platform
