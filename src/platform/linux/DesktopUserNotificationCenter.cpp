#include "platform/linux/DesktopUserNotificationCenter.h"

#include <cmath>
#include <ctime>
#include <utility>

#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/NotificationKey.h"

namespace Platform {
namespace {

constexpr double kFurthest = 2e11;  // the calendar has four or five digits for a year

// When the user's clock shows that second. Nothing for what is no date.
std::optional<double> TimeOf(const DateComponents& components) {
  std::tm parts = {};
  parts.tm_year = components.year - 1900;
  parts.tm_mon = components.month - 1;
  parts.tm_mday = components.day;
  parts.tm_hour = components.hour;
  parts.tm_min = components.minute;
  parts.tm_sec = components.second;
  parts.tm_isdst = -1;
  parts.tm_wday = -1;
  const std::time_t time = std::mktime(&parts);
  if (time == -1 && parts.tm_wday == -1) return std::nullopt;
  return static_cast<double>(time);
}

// Nothing when the trigger will never fire.
std::optional<double> DueTime(const NotificationRequest& request, double now) {
  if (const auto* interval = std::get_if<TimeIntervalTrigger>(&request.trigger)) {
    return now + interval->seconds;
  }
  const auto& components = std::get<CalendarTrigger>(request.trigger).components;
  const std::optional<double> time = components ? TimeOf(*components) : std::nullopt;
  const bool hasPassed = time && *time + 1 <= now;
  return hasPassed ? std::nullopt : time;
}

}  // namespace

DesktopUserNotificationCenter::DesktopUserNotificationCenter(
    std::shared_ptr<DesktopNotifier> notifier, std::shared_ptr<UuidGenerator> uuids)
    : notifier_(std::move(notifier)), uuids_(std::move(uuids)) {}

bool DesktopUserNotificationCenter::IsSupported() const { return notifier_->HasBus(); }

std::optional<DateComponents> DesktopUserNotificationCenter::CalendarComponents(
    double secondsSince1970) const {
  if (!(std::abs(secondsSince1970) < kFurthest)) return std::nullopt;
  const auto time = static_cast<std::time_t>(std::floor(secondsSince1970));
  std::tm parts = {};
  if (::localtime_r(&time, &parts) == nullptr) return std::nullopt;
  return DateComponents{.year = parts.tm_year + 1900,
                        .month = parts.tm_mon + 1,
                        .day = parts.tm_mday,
                        .hour = parts.tm_hour,
                        .minute = parts.tm_min,
                        .second = parts.tm_sec};
}

void DesktopUserNotificationCenter::Add(const NotificationRequest& request) {
  const std::string key =
      request.identifier ? "request:" + *request.identifier : NewNotificationKey(*uuids_);
  const std::optional<double> dueAt = DueTime(request, notifier_->Now());
  if (!dueAt) return notifier_->Cancel(key);  // it takes the place of an earlier one all the same
  notifier_->Schedule({.key = key,
                       .dueAt = *dueAt,
                       .body = request.content.body.value_or(""),
                       .sound = request.content.sound.value_or(""),
                       .isSilent = false,
                       .category = "",
                       .userInfo = request.content.userInfo});
}

void DesktopUserNotificationCenter::ResumePending() { notifier_->ResumePending(); }

}  // namespace Platform
