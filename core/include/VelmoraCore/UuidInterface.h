#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// One fixed identifier of 16 bytes. May be read on any thread.
class VELMORA_CORE_API UuidInterface : public virtual ObjectInterface {
 public:
  ~UuidInterface() override;

  // The 36-character form with hyphens.
  virtual std::string GetString() const = 0;

  // Writes the 16 bytes, in network byte order, to `out`, which must hold them.
  virtual void GetBytes(unsigned char* out) const = 0;
};

}  // namespace Velmora
