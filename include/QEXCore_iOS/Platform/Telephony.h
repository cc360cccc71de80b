#pragma once

#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// Knowledge of the cellular subscriber. Belongs to one caller at a time.
class QEXCORE_API TelephonyNetworkInfo {
 public:
  virtual ~TelephonyNetworkInfo();

  // False when this kind of device has no notion of a cellular provider.
  virtual bool KnowsSubscriberProvider() const = 0;

  // The provider's name; nothing when it has none.
  virtual std::optional<std::string> CarrierName() const = 0;
};

// Looks for the system's telephony at the moment of the call. Safe from any thread.
class QEXCORE_API Telephony {
 public:
  virtual ~Telephony();

  // Null where the system has no telephony service.
  virtual std::unique_ptr<TelephonyNetworkInfo> CreateNetworkInfo() const = 0;
};

}  // namespace Platform
