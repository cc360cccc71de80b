#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <memory>
#include <string_view>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/LoggingMode.h"
#include "VelmoraCore/LoggingServiceInterface.h"

namespace Velmora {

// The one way to the log, for the whole process. May be used on any thread, at any time, also while
// the process ends. Never throws.
//
// A line that the level filters out costs a few nanoseconds: nothing of it is formatted. Other
// lines are formatted in full, whatever their length, and go to the sink; without one, or when the
// sink throws, they go to standard error as "[VXSDK ERROR <tag>]: message".
class VELMORA_CORE_API Log {
 public:
  Log() = delete;

  // Lines beyond this level are dropped. LoggingMode::Error unless set.
  static void SetLogLevel(LoggingMode level);
  static LoggingMode GetLogLevel();

  // True when a line of this mode would be written. Ask first where the arguments are costly.
  static bool Precheck(LoggingMode mode) {
    return static_cast<std::int32_t>(mode) <= level_.load(std::memory_order_relaxed);
  }

  // Replaces the sink, which is shared from now on; an empty pointer takes it away. A call of the
  // former sink may still be under way on another thread. No lock is held while a sink is called;
  // lines that a sink itself logs go to standard error.
  static void SetLoggingService(std::shared_ptr<LoggingServiceInterface> loggingService);

  // `format` and what follows are those of std::printf.
  static void Error(std::string_view tag, const char* format, ...)
      __attribute__((format(printf, 2, 3)));
  static void Warning(std::string_view tag, const char* format, ...)
      __attribute__((format(printf, 2, 3)));
  static void Debug(std::string_view tag, const char* format, ...)
      __attribute__((format(printf, 2, 3)));

  // Reaches the sink through its Debug.
  static void Trace(std::string_view tag, const char* format, ...)
      __attribute__((format(printf, 2, 3)));

 private:
  static void Write(LoggingMode mode, std::string_view tag, const char* format,
                    std::va_list arguments);

  static std::atomic<std::int32_t> level_;
};

}  // namespace Velmora
