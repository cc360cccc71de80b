#pragma once

#include <array>
#include <cstdint>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

using UuidBytes = std::array<std::uint8_t, 16>;  // network byte order (RFC 4122)

// Makes universally unique identifiers. Safe from any thread.
class QEXCORE_API UuidGenerator {
 public:
  virtual ~UuidGenerator();

  // A random identifier, version 4. Throws Platform::DeviceError when the system gives no random
  // bytes.
  virtual UuidBytes Random() = 0;
};

}  // namespace Platform
