#include "support/FakeNotifications.h"

#include <chrono>
#include <cmath>

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace TestSupport {
namespace {

constexpr double kFurthest = 1e11;  // some three thousand years either way

}  // namespace

std::optional<Platform::DateComponents> FakeUserNotificationCenter::CalendarComponents(
    double secondsSince1970) const {
  if (!(std::abs(secondsSince1970) < kFurthest)) return std::nullopt;
  const std::chrono::sys_seconds time(
      std::chrono::seconds(static_cast<std::int64_t>(std::floor(secondsSince1970))));
  const auto midnight = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(midnight);
  const std::chrono::hh_mm_ss clock(time - midnight);
  return Platform::DateComponents{
      .year = static_cast<int>(date.year()),
      .month = static_cast<int>(static_cast<unsigned>(date.month())),
      .day = static_cast<int>(static_cast<unsigned>(date.day())),
      .hour = static_cast<int>(clock.hours().count()),
      .minute = static_cast<int>(clock.minutes().count()),
      .second = static_cast<int>(clock.seconds().count()),
  };
}

void FakeUserNotificationCenter::Add(const Platform::NotificationRequest& request) {
  if (fails_.Get()) throw Platform::DeviceError("The device failed.");
  requests_.With([&](auto& requests) {
    if (request.identifier) {
      std::erase_if(requests,
                    [&](const auto& each) { return each.identifier == request.identifier; });
    }
    requests.push_back(request);
  });
}

void FakeLocalNotifications::Schedule(const Platform::LocalNotification& notification) {
  if (fails_.Get()) throw Platform::DeviceError("The device failed.");
  notifications_.With([&](auto& notifications) { notifications.push_back(notification); });
}

}  // namespace TestSupport
