#include "services/ui/AppUi.h"

#include "QEXCore_iOS/Platform/Host.h"

namespace Velmora {

std::shared_ptr<Platform::Window> AppUi::GetKeyWindow() {
  const auto application = Platform::Host::Current()->application;
  if (auto key = application->KeyWindow()) return key;
  const auto windows = application->Windows();
  return windows.empty() ? nullptr : windows.front();
}

}  // namespace Velmora
