#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Uuid.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/UuidInterface.h"

namespace Velmora {

// One random (version 4) identifier, fixed from construction on. May be read on any thread.
class NativeUuid final : public Object, public virtual UuidInterface {
 public:
  // A device that gives no random bytes is made up for: the identifier is then still one of its
  // kind in this process and unlikely to be met elsewhere, but no secret.
  NativeUuid();

  // Groups of 8-4-4-4-12 upper-case hexadecimal digits.
  std::string GetString() const override;

  void GetBytes(unsigned char* out) const override;

 private:
  const Platform::UuidBytes bytes_;
};

}  // namespace Velmora
