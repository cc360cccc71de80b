#pragma once

#include <string>

#include <QEXCore_iOS/Platform/Value.h>

#include "HubObserver.h"

namespace Storefront {

struct Launch {
  std::string deepLink;
  std::string messageId;
  std::string notificationId;
};

// How many hits wait on the device, and how many this process has sent.
struct HitNumbers {
  long long waiting = 0;
  long long sent = 0;
};

// What an app does with the SDK while somebody visits the shop.
class Visit {
 public:
  explicit Visit(const HubObserver& observer) : observer_(observer) {}

  // False when the SDK has not started within ten seconds.
  bool Start(const std::string& appId, const std::string& configurationFile) const;

  // Asks for the newest rules, and waits until there are any to be had.
  void FetchRules() const;

  // The context data of the start.
  Platform::Value Begin(const Launch& launch) const;
  void LookAround() const;
  void BuyShoes() const;
  void Leave() const;

  void TellIdentities() const;

  HitNumbers AskForHits() const;

  // Waits until no hit waits any more. False when that does not come within twenty seconds.
  bool WaitUntilHitsAreSent() const;

 private:
  const HubObserver& observer_;
};

}  // namespace Storefront
