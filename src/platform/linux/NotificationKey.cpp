#include "platform/linux/NotificationKey.h"

#include <array>
#include <cstdio>

namespace Platform {

std::string NewNotificationKey(UuidGenerator& uuids) {
  std::string key = "unnamed:";
  for (const auto byte : uuids.Random()) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(byte));
    key += digits.data();
  }
  return key;
}

}  // namespace Platform
