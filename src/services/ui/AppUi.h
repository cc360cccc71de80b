#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Window.h"

namespace Velmora {

// Where messages are presented.
class AppUi {
 public:
  AppUi() = delete;

  // The application's key window or, without one, the first of its windows; null when it has none.
  // On the main queue only. Throws what the device throws.
  static std::shared_ptr<Platform::Window> GetKeyWindow();
};

}  // namespace Velmora
