#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// Cryptographic digests. Safe from any thread.
class QEXCORE_API Digest {
 public:
  virtual ~Digest();

  // SHA-256 (FIPS 180-4) of all the bytes.
  virtual std::array<std::uint8_t, 32> Sha256(std::string_view bytes) const = 0;
};

}  // namespace Platform
