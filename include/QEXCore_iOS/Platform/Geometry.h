#pragma once

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// Lengths are points; y grows downwards.

struct QEXCORE_API Point {
  double x = 0;
  double y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

struct QEXCORE_API Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace Platform
