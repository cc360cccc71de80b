#pragma once

#include "QEXCore_iOS/Platform/Screen.h"

namespace Platform {

// The main screen of a device that has none.
class HeadlessScreen final : public Screen {
 public:
  ScreenMetrics MainScreen() const override;
};

}  // namespace Platform
