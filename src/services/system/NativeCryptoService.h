#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/CryptoServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Identifiers and hashes from the device's generators. May be called on any thread.
class NativeCryptoService final : public Object, public virtual CryptoServiceInterface {
 public:
  std::shared_ptr<UuidInterface> GetRandomUuid() const override;

  // Empty only when the device cannot hash.
  std::string GetSha256Hash(const std::string& input) const override;
};

std::shared_ptr<CryptoServiceInterface> CreateNativeCryptoService();

}  // namespace Velmora
