#include "platform/headless/HeadlessLocalNotifications.h"

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace Platform {

void HeadlessLocalNotifications::Schedule(const LocalNotification& /*notification*/) {
  throw DeviceError("There are no local notifications.");
}

}  // namespace Platform
