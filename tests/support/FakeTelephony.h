#pragma once

#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Telephony.h"
#include "support/Guarded.h"

namespace TestSupport {

class FakeTelephony final : public Platform::Telephony {
 public:
  // What the telephony service knows.
  struct Subscriber {
    bool knowsProvider = true;
    std::optional<std::string> carrierName = "Fake Mobile";
  };

  // Nothing: a system without a telephony service.
  void SetSubscriber(const std::optional<Subscriber>& subscriber) { subscriber_.Set(subscriber); }

  std::unique_ptr<Platform::TelephonyNetworkInfo> CreateNetworkInfo() const override;

 private:
  Guarded<std::optional<Subscriber>> subscriber_{Subscriber{}};
};

}  // namespace TestSupport
