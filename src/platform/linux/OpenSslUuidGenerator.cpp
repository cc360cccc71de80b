#include "platform/linux/OpenSslUuidGenerator.h"

#include <openssl/rand.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/OpenSslLifetime.h"

namespace Platform {

OpenSslUuidGenerator::OpenSslUuidGenerator() { KeepOpenSslAtExit(); }

UuidBytes OpenSslUuidGenerator::Random() {
  UuidBytes bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    throw DeviceError("Cannot make a random identifier: the system gives no random bytes.");
  }
  constexpr unsigned kVersion4 = 0x40;
  constexpr unsigned kVariant = 0x80;
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0fU) | kVersion4);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3fU) | kVariant);
  return bytes;
}

}  // namespace Platform
