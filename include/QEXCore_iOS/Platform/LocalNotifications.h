#pragma once

#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// When a notification of the legacy kind is shown, in the default time zone.
struct QEXCORE_API FireDate {
  enum class Kind { SinceNow, Since1970 };

  Kind kind = Kind::SinceNow;
  double seconds = 0;

  friend bool operator==(const FireDate&, const FireDate&) = default;
};

// A notification of the legacy kind.
struct QEXCORE_API LocalNotification {
  std::optional<std::string> alertBody;
  std::optional<std::string> soundName;  // absent: silent
  std::optional<std::string> category;
  Value userInfo;  // a JSON object or array, or absent
  FireDate fireDate;
};

// The legacy way to local notifications. Safe from any thread.
class QEXCORE_API LocalNotifications {
 public:
  virtual ~LocalNotifications();

  // False where the platform has no such notifications.
  virtual bool IsSupported() const = 0;

  // Whether such notifications have a category.
  virtual bool KnowsCategory() const = 0;

  // Keeps the notification until its time, also when the process ends before that, and then shows
  // it once. Returns before anything is shown. Throws Platform::DeviceError when it cannot be kept.
  virtual void Schedule(const LocalNotification& notification) = 0;
};

}  // namespace Platform
