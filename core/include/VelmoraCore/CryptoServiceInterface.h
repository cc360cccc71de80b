#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/UuidInterface.h"

namespace Velmora {

// Random identifiers and hashes. May be called on any thread; never fails.
class VELMORA_CORE_API CryptoServiceInterface : public virtual ObjectInterface {
 public:
  ~CryptoServiceInterface() override;

  // A new random (version 4) identifier on every call.
  virtual std::shared_ptr<UuidInterface> GetRandomUuid() const = 0;

  // The SHA-256 of the bytes of `input`, as 64 lower-case hexadecimal digits.
  virtual std::string GetSha256Hash(const std::string& input) const = 0;
};

}  // namespace Velmora
