#pragma once

#include <optional>
#include <string>
#include <variant>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// A second of the user's calendar and time zone; months and days count from 1.
struct QEXCORE_API DateComponents {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

// Fires once when the calendar shows that second; never without components, and never for a second
// that has passed.
struct QEXCORE_API CalendarTrigger {
  std::optional<DateComponents> components;

  friend bool operator==(const CalendarTrigger&, const CalendarTrigger&) = default;
};

// Fires once, so many seconds after the request was added.
struct QEXCORE_API TimeIntervalTrigger {
  double seconds = 0;

  friend bool operator==(const TimeIntervalTrigger&, const TimeIntervalTrigger&) = default;
};

// What a notification says. Texts are UTF-8.
struct QEXCORE_API NotificationContent {
  std::optional<std::string> body;
  std::optional<std::string> sound;  // a name; absent: the platform's default sound
  Value userInfo;                    // a JSON object or array, or absent
};

struct QEXCORE_API NotificationRequest {
  std::optional<std::string> identifier;
  NotificationContent content;
  std::variant<TimeIntervalTrigger, CalendarTrigger> trigger;
};

// The modern way to local notifications. Safe from any thread.
class QEXCORE_API UserNotificationCenter {
 public:
  virtual ~UserNotificationCenter();

  // False where the platform has no such centre.
  virtual bool IsSupported() const = 0;

  // What the user's calendar shows that many seconds after 1970-01-01 UTC; nothing for what is no
  // number and where the calendar does not reach.
  virtual std::optional<DateComponents> CalendarComponents(double secondsSince1970) const = 0;

  // Keeps the request until its trigger fires, also when the process ends before that, and then
  // shows it once. It takes the place of an earlier one with its identifier: of one that waits, and
  // of one that is shown. Returns before anything is shown. Throws Platform::DeviceError when it
  // cannot be kept.
  virtual void Add(const NotificationRequest& request) = 0;

  // Takes up what earlier processes of the application left waiting; what became due meanwhile is
  // shown now. To be called once, when the process starts. Returns at once and throws nothing.
  virtual void ResumePending() = 0;
};

}  // namespace Platform
