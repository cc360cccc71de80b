#include "support/FakeTelephony.h"

#include <utility>

namespace TestSupport {
namespace {

class FakeNetworkInfo final : public Platform::TelephonyNetworkInfo {
 public:
  explicit FakeNetworkInfo(FakeTelephony::Subscriber subscriber)
      : subscriber_(std::move(subscriber)) {}

  bool KnowsSubscriberProvider() const override { return subscriber_.knowsProvider; }
  std::optional<std::string> CarrierName() const override {
    return subscriber_.knowsProvider ? subscriber_.carrierName : std::nullopt;
  }

 private:
  FakeTelephony::Subscriber subscriber_;
};

}  // namespace

std::unique_ptr<Platform::TelephonyNetworkInfo> FakeTelephony::CreateNetworkInfo() const {
  auto subscriber = subscriber_.Get();
  if (!subscriber) return nullptr;
  return std::make_unique<FakeNetworkInfo>(std::move(*subscriber));
}

}  // namespace TestSupport
