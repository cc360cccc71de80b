#pragma once

#include <cstdint>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// What the main screen was like when this object was made. May be read on any thread. A figure that
// is not known is -1.
class VELMORA_CORE_API DisplayInformationInterface : public virtual ObjectInterface {
 public:
  ~DisplayInformationInterface() override;

  virtual std::int32_t GetWidthPixels() const = 0;
  virtual std::int32_t GetHeightPixels() const = 0;

  // Dots per inch.
  virtual std::int32_t GetDensityDpi() const = 0;
};

}  // namespace Velmora
