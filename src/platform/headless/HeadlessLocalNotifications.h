#pragma once

#include "QEXCore_iOS/Platform/LocalNotifications.h"

namespace Platform {

// Legacy notifications of a device that has none.
class HeadlessLocalNotifications final : public LocalNotifications {
 public:
  bool IsSupported() const override { return false; }
  bool KnowsCategory() const override { return false; }

  // Always throws.
  void Schedule(const LocalNotification& notification) override;
};

}  // namespace Platform
