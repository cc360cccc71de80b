#include "platform/headless/HeadlessUserNotificationCenter.h"

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace Platform {

std::optional<DateComponents> HeadlessUserNotificationCenter::CalendarComponents(
    double /*secondsSince1970*/) const {
  return std::nullopt;
}

void HeadlessUserNotificationCenter::Add(const NotificationRequest& /*request*/) {
  throw DeviceError("There is no notification centre.");
}

}  // namespace Platform
