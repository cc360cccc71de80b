#pragma once

#include <cstdint>

#include "VelmoraCore/DisplayInformationInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// The size of the main screen at the moment of construction, as the screen was turned then. The
// density is never known.
class NativeDisplayInformation final : public Object, public virtual DisplayInformationInterface {
 public:
  NativeDisplayInformation();

  std::int32_t GetWidthPixels() const override;
  std::int32_t GetHeightPixels() const override;
  std::int32_t GetDensityDpi() const override;

 private:
  std::int32_t widthPixels_ = -1;
  std::int32_t heightPixels_ = -1;
  std::int32_t densityDpi_ = -1;
};

}  // namespace Velmora
