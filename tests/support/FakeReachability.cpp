#include "support/FakeReachability.h"

namespace TestSupport {
namespace {

class FakeProbe final : public Platform::ReachabilityProbe {
 public:
  explicit FakeProbe(std::optional<std::uint32_t> flags) : flags_(flags) {}

  std::optional<std::uint32_t> Flags() const override { return flags_; }

 private:
  std::optional<std::uint32_t> flags_;
};

}  // namespace

std::unique_ptr<Platform::ReachabilityProbe> FakeReachability::CreateInternetProbe() const {
  if (!canCreateProbes_.Get()) return nullptr;
  return std::make_unique<FakeProbe>(flags_.Get());
}

}  // namespace TestSupport
