#pragma once

#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// A notification that waits to be shown on the desktop.
struct DesktopNotification {
  std::string key;   // names it: of two that share a key the later one takes the other's place
  double dueAt = 0;  // seconds since 1970-01-01 UTC
  std::string body;
  std::string sound;  // a name; empty: the desktop's default
  bool isSilent = false;
  std::string category;  // may be empty
  Value userInfo;        // a JSON object or array, or absent

  friend bool operator==(const DesktopNotification&, const DesktopNotification&) = default;
};

}  // namespace Platform
