#include "platform/headless/HeadlessScreen.h"

namespace Platform {

ScreenMetrics HeadlessScreen::MainScreen() const { return {.width = 0, .height = 0, .scale = 1}; }

}  // namespace Platform
