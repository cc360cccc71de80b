#include "services/system/NativeDisplayInformation.h"

#include <optional>

#include "QEXCore_iOS/Platform/Value.h"
#include "services/system/AskHost.h"

namespace Velmora {
namespace {

using Metrics = std::optional<Platform::ScreenMetrics>;

// Without the fraction, and within what 32 bits can hold whatever the screen says.
std::int32_t Pixels(double points, double scale) {
  return Platform::Value(points * scale).AsInt32();
}

}  // namespace

NativeDisplayInformation::NativeDisplayInformation() {
  const Metrics screen = AskHost(
      [](const Platform::Host& host) -> Metrics { return host.screen->MainScreen(); }, Metrics());
  if (!screen) return;
  widthPixels_ = Pixels(screen->width, screen->scale);
  heightPixels_ = Pixels(screen->height, screen->scale);
}

std::int32_t NativeDisplayInformation::GetWidthPixels() const { return widthPixels_; }

std::int32_t NativeDisplayInformation::GetHeightPixels() const { return heightPixels_; }

std::int32_t NativeDisplayInformation::GetDensityDpi() const { return densityDpi_; }

}  // namespace Velmora
