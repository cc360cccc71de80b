#include "platform/linux/DesktopLocalNotifications.h"

#include <utility>

#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/NotificationKey.h"

namespace Platform {

DesktopLocalNotifications::DesktopLocalNotifications(std::shared_ptr<DesktopNotifier> notifier,
                                                     std::shared_ptr<UuidGenerator> uuids,
                                                     Availability availability)
    : notifier_(std::move(notifier)), uuids_(std::move(uuids)), availability_(availability) {}

bool DesktopLocalNotifications::IsSupported() const {
  return availability_ == Availability::On && notifier_->HasBus();
}

void DesktopLocalNotifications::Schedule(const LocalNotification& notification) {
  const FireDate& fireDate = notification.fireDate;
  const double start = fireDate.kind == FireDate::Kind::SinceNow ? notifier_->Now() : 0;
  notifier_->Schedule({.key = NewNotificationKey(*uuids_),
                       .dueAt = start + fireDate.seconds,
                       .body = notification.alertBody.value_or(""),
                       .sound = notification.soundName.value_or(""),
                       .isSilent = !notification.soundName.has_value(),
                       .category = notification.category.value_or(""),
                       .userInfo = notification.userInfo});
}

}  // namespace Platform
