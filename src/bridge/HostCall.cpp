#include "bridge/HostCall.h"

#include "VelmoraCore/Log.h"

namespace Velmora {

void LogSwallowed(const char* operation, const char* reason) noexcept {
  Log::Error("QEXCore", "%s failed: %s", operation, reason);
}

}  // namespace Velmora
