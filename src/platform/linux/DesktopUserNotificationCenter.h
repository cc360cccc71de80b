#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/UserNotificationCenter.h"
#include "QEXCore_iOS/Platform/Uuid.h"

namespace Platform {

class DesktopNotifier;

// The notification service of a desktop. Supported where there is a session bus.
class DesktopUserNotificationCenter final : public UserNotificationCenter {
 public:
  DesktopUserNotificationCenter(std::shared_ptr<DesktopNotifier> notifier,
                                std::shared_ptr<UuidGenerator> uuids);

  bool IsSupported() const override;
  std::optional<DateComponents> CalendarComponents(double secondsSince1970) const override;
  void Add(const NotificationRequest& request) override;
  void ResumePending() override;

 private:
  const std::shared_ptr<DesktopNotifier> notifier_;
  const std::shared_ptr<UuidGenerator> uuids_;
};

}  // namespace Platform
