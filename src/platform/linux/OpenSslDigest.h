#pragma once

#include "QEXCore_iOS/Platform/Digest.h"

namespace Platform {

// Throws Platform::DeviceError when the system's cryptography offers no SHA-256.
class OpenSslDigest final : public Digest {
 public:
  OpenSslDigest();

  std::array<std::uint8_t, 32> Sha256(std::string_view bytes) const override;
};

}  // namespace Platform
