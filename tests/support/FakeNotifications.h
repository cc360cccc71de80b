#pragma once

#include <optional>
#include <vector>

#include "QEXCore_iOS/Platform/LocalNotifications.h"
#include "QEXCore_iOS/Platform/UserNotificationCenter.h"
#include "support/Guarded.h"

namespace TestSupport {

// Keeps the requests that are waiting; none is ever shown. Its calendar is that of UTC.
class FakeUserNotificationCenter final : public Platform::UserNotificationCenter {
 public:
  void SetSupported(bool isSupported) { isSupported_.Set(isSupported); }
  void SetFails(bool fails) { fails_.Set(fails); }
  std::vector<Platform::NotificationRequest> Requests() const { return requests_.Get(); }
  int TimesResumed() const { return timesResumed_.Get(); }

  bool IsSupported() const override { return isSupported_.Get(); }
  std::optional<Platform::DateComponents> CalendarComponents(
      double secondsSince1970) const override;
  void Add(const Platform::NotificationRequest& request) override;
  void ResumePending() override {
    timesResumed_.With([](int& times) { ++times; });
  }

 private:
  Guarded<bool> isSupported_{true};
  Guarded<bool> fails_{false};
  Guarded<int> timesResumed_{0};
  Guarded<std::vector<Platform::NotificationRequest>> requests_;
};

// Keeps the notifications that are waiting.
class FakeLocalNotifications final : public Platform::LocalNotifications {
 public:
  void SetSupported(bool isSupported) { isSupported_.Set(isSupported); }
  void SetKnowsCategory(bool knows) { knowsCategory_.Set(knows); }
  void SetFails(bool fails) { fails_.Set(fails); }
  std::vector<Platform::LocalNotification> Notifications() const { return notifications_.Get(); }

  bool IsSupported() const override { return isSupported_.Get(); }
  bool KnowsCategory() const override { return knowsCategory_.Get(); }
  void Schedule(const Platform::LocalNotification& notification) override;

 private:
  Guarded<bool> isSupported_{true};
  Guarded<bool> knowsCategory_{true};
  Guarded<bool> fails_{false};
  Guarded<std::vector<Platform::LocalNotification>> notifications_;
};

}  // namespace TestSupport
