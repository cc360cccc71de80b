#pragma once

#include <cstdint>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// The bytes of a response's body. They live as long as this object and never change; may be read on
// any thread.
class VELMORA_CORE_API HttpConnectionDataInterface : public virtual ObjectInterface {
 public:
  ~HttpConnectionDataInterface() override;

  // Copies the body's first bytes, `maximum` at most, into `buffer`. Returns how many; 0 without a
  // body.
  virtual std::uint64_t GetData(std::uint64_t maximum, std::uint8_t* buffer) = 0;

  // The length of the body; 0 without one.
  virtual std::uint64_t GetSize() = 0;
};

}  // namespace Velmora
