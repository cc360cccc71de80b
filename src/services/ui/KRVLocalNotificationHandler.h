#pragma once

#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Value.h"

// Schedules local notifications, the modern way where the device knows it, else the legacy way. May
// be called on any thread; never throws.
class KRVLocalNotificationHandler {
 public:
  using Text = std::optional<std::string>;

  KRVLocalNotificationHandler() = delete;

  // False when asking fails, too.
  static bool isUNUserNotificationSupported();
  static bool isUILocalNotificationSupported();

  // Schedules a notification on the main queue: at `fireDate`, in seconds since 1970 UTC, or
  // `delay` seconds from then when `fireDate` is 0. `userInfo` is JSON; one that is not is left
  // out, with a line in the log. The category counts on the legacy way only; the deep link is not
  // used. A device that fails is logged.
  static void scheduleWithIdentifier(const Text& identifier, const Text& content, const Text& sound,
                                     const Text& category, double delay, const Text& deepLink,
                                     double fireDate, const Text& userInfo);

 private:
  struct Request;

  static void Schedule(const Request& request);
  static Platform::Value ParseUserInfo(const Request& request);
  static void AddNotificationRequest(const Request& request, const Platform::Value& userInfo);
  static void ScheduleLocalNotification(const Request& request, const Platform::Value& userInfo);
};
