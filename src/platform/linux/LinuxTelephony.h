#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/Telephony.h"

namespace Platform {

// The modem that ModemManager knows, asked over the system's message bus on each call. A system
// without a bus, without a running ModemManager (none is started) or without a modem has no
// telephony; nor has one that does not answer in time. The calling thread waits for the answer.
class LinuxTelephony final : public Telephony {
 public:
  // Asks on the system bus and gives up after a second.
  LinuxTelephony();

  // Asks on the bus at this D-Bus address.
  LinuxTelephony(std::string busAddress, std::chrono::milliseconds patience);

  // What the service knew of its first modem at the moment of the call. A modem that is not of the
  // 3GPP family knows no subscriber provider; one that is not registered has no carrier name.
  std::unique_ptr<TelephonyNetworkInfo> CreateNetworkInfo() const override;

 private:
  const std::string busAddress_;  // empty: the system bus
  const std::chrono::milliseconds patience_;
};

}  // namespace Platform
