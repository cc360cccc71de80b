#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Uuid.h"

namespace Platform {

// A key that no other notification has, and that is no "request:" with an identifier.
std::string NewNotificationKey(UuidGenerator& uuids);

}  // namespace Platform
