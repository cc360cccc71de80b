#pragma once

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

struct ScreenMetrics {
  double width = 0;   // points, as the screen is turned now
  double height = 0;  // points
  double scale = 1;   // pixels to a point
};

// The main screen. Safe from any thread.
class QEXCORE_API Screen {
 public:
  virtual ~Screen();

  // The main screen as it is now; all sizes zero when there is none.
  virtual ScreenMetrics MainScreen() const = 0;
};

}  // namespace Platform
