#include "platform/linux/OpenSslDigest.h"

#include <openssl/evp.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/OpenSslLifetime.h"

namespace Platform {

OpenSslDigest::OpenSslDigest() { KeepOpenSslAtExit(); }

std::array<std::uint8_t, 32> OpenSslDigest::Sha256(std::string_view bytes) const {
  // Looking the method up costs more than hashing a short text. It stays until the process ends.
  static EVP_MD* const method = EVP_MD_fetch(nullptr, "SHA256", nullptr);
  std::array<std::uint8_t, 32> digest{};
  if (method == nullptr ||
      EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, method, nullptr) != 1) {
    throw DeviceError("Cannot compute a SHA-256 digest.");
  }
  return digest;
}

}  // namespace Platform
