#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/LoggingServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Writes each line to the device's system log as "[VXSDK <LEVEL> <tag>]: message", neither filtered
// nor cut. A tag or message that is empty, or no UTF-8, reads "(null)"; a zero byte ends either.
// May be called on any thread; a log that fails loses the line.
class NativeLoggingService final : public Object, public virtual LoggingServiceInterface {
 public:
  void Debug(const std::string& tag, const std::string& message) const override;
  void Warning(const std::string& tag, const std::string& message) const override;
  void Error(const std::string& tag, const std::string& message) const override;
};

std::shared_ptr<LoggingServiceInterface> CreateNativeLoggingService();

}  // namespace Velmora
