#pragma once

#include "QEXCore_iOS/Platform/UserNotificationCenter.h"

namespace Platform {

// The notification centre of a device that has none.
class HeadlessUserNotificationCenter final : public UserNotificationCenter {
 public:
  bool IsSupported() const override { return false; }
  std::optional<DateComponents> CalendarComponents(double secondsSince1970) const override;

  // Always throws.
  void Add(const NotificationRequest& request) override;
  void ResumePending() override {}
};

}  // namespace Platform
