#include "services/system/NativeLoggingService.h"

#include <string_view>

#include "QEXCore_iOS/Platform/Host.h"
#include "interop/StringConversion.h"

namespace Velmora {
namespace {

// As the platform's log prints a string that is absent.
std::string_view Printed(const std::string& text) {
  return ToNSStringView(text).value_or("(null)");
}

void WriteLine(std::string_view level, const std::string& tag,
               const std::string& message) noexcept {
  try {
    const std::string_view printedTag = Printed(tag);
    const std::string_view printedMessage = Printed(message);
    std::string line;
    line.reserve(level.size() + printedTag.size() + printedMessage.size() + 16);
    line.append("[VXSDK ").append(level).append(" <").append(printedTag).append(">]: ");
    line.append(printedMessage);
    Platform::Host::Current()->systemLog->Write(line);
  } catch (...) {
    // Nothing is left to tell it to.
  }
}

}  // namespace

void NativeLoggingService::Debug(const std::string& tag, const std::string& message) const {
  WriteLine("DEBUG", tag, message);
}

void NativeLoggingService::Warning(const std::string& tag, const std::string& message) const {
  WriteLine("WARNING", tag, message);
}

void NativeLoggingService::Error(const std::string& tag, const std::string& message) const {
  WriteLine("ERROR", tag, message);
}

std::shared_ptr<LoggingServiceInterface> CreateNativeLoggingService() {
  return std::make_shared<NativeLoggingService>();
}

}  // namespace Velmora
