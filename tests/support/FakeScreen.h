#pragma once

#include "QEXCore_iOS/Platform/Screen.h"
#include "support/Guarded.h"

namespace TestSupport {

class FakeScreen final : public Platform::Screen {
 public:
  void SetMetrics(const Platform::ScreenMetrics& metrics) { metrics_.Set(metrics); }

  Platform::ScreenMetrics MainScreen() const override { return metrics_.Get(); }

 private:
  Guarded<Platform::ScreenMetrics> metrics_{
      Platform::ScreenMetrics{.width = 375, .height = 812, .scale = 3}};
};

}  // namespace TestSupport
