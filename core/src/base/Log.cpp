#include "VelmoraCore/Log.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <string>
#include <utility>

namespace Velmora {
namespace {

// Holds the sink. Never destroyed, so that lines find it while the process ends.
struct Sink {
  static Sink& Instance() {
    static Sink& instance = *new Sink;
    return instance;
  }

  std::shared_ptr<LoggingServiceInterface> Get() {
    const std::lock_guard<std::mutex> lock(mutex);
    return service;
  }

  void Replace(std::shared_ptr<LoggingServiceInterface> replacement) {
    const std::lock_guard<std::mutex> lock(mutex);
    // The former sink leaves with the argument, after the lock.
    service.swap(replacement);
  }

  std::mutex mutex;
  std::shared_ptr<LoggingServiceInterface> service;
};

// True while this thread is inside a sink, whose own lines would otherwise lead back into it.
thread_local bool insideSink = false;

class SinkVisit {
 public:
  SinkVisit() { insideSink = true; }
  ~SinkVisit() { insideSink = false; }
  SinkVisit(const SinkVisit&) = delete;
  SinkVisit& operator=(const SinkVisit&) = delete;
};

std::string Format(const char* format, std::va_list arguments) {
  std::array<char, 512> buffer;
  std::va_list again;
  va_copy(again, arguments);
  // The analyzer loses sight of the caller's va_start when it has looked at another source before.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
  std::string text;
  if (length < 0) {
    // Better the bare format than nothing.
    text = format;
  } else if (static_cast<std::size_t>(length) < buffer.size()) {
    text.assign(buffer.data(), static_cast<std::size_t>(length));
  } else {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, format, again);
  }
  va_end(again);
  return text;
}

const char* NameOf(LoggingMode mode) {
  switch (mode) {
    case LoggingMode::Error:
      return "ERROR";
    case LoggingMode::Warning:
      return "WARNING";
    case LoggingMode::Debug:
    case LoggingMode::Trace:
      break;
  }
  return "DEBUG";
}

void WriteToStandardError(LoggingMode mode, const std::string& tag, const std::string& message) {
  const std::string line =
      std::string("[VXSDK ") + NameOf(mode) + " <" + tag + ">]: " + message + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void CallSink(const LoggingServiceInterface& sink, LoggingMode mode, const std::string& tag,
              const std::string& message) {
  const SinkVisit visit;
  switch (mode) {
    case LoggingMode::Error:
      return sink.Error(tag, message);
    case LoggingMode::Warning:
      return sink.Warning(tag, message);
    case LoggingMode::Debug:
    case LoggingMode::Trace:
      return sink.Debug(tag, message);
  }
}

void Deliver(LoggingMode mode, const std::string& tag, const std::string& message) {
  const auto sink = insideSink ? nullptr : Sink::Instance().Get();
  if (sink != nullptr) {
    try {
      CallSink(*sink, mode, tag, message);
      return;
    } catch (...) {
      // Falls through to standard error: the line may not have been written.
    }
  }
  WriteToStandardError(mode, tag, message);
}

}  // namespace

constinit std::atomic<std::int32_t> Log::level_{static_cast<std::int32_t>(LoggingMode::Error)};

void Log::SetLogLevel(LoggingMode level) {
  level_.store(static_cast<std::int32_t>(level), std::memory_order_relaxed);
}

LoggingMode Log::GetLogLevel() {
  return static_cast<LoggingMode>(level_.load(std::memory_order_relaxed));
}

void Log::SetLoggingService(std::shared_ptr<LoggingServiceInterface> loggingService) {
  Sink::Instance().Replace(std::move(loggingService));
}

void Log::Write(LoggingMode mode, std::string_view tag, const char* format,
                std::va_list arguments) {
  try {
    Deliver(mode, std::string(tag), Format(format, arguments));
  } catch (...) {
    // Only for want of memory; a log line must not be what ends the caller.
  }
}

void Log::Error(std::string_view tag, const char* format, ...) {
  if (!Precheck(LoggingMode::Error)) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  Write(LoggingMode::Error, tag, format, arguments);
  va_end(arguments);
}

void Log::Warning(std::string_view tag, const char* format, ...) {
  if (!Precheck(LoggingMode::Warning)) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  Write(LoggingMode::Warning, tag, format, arguments);
  va_end(arguments);
}

void Log::Debug(std::string_view tag, const char* format, ...) {
  if (!Precheck(LoggingMode::Debug)) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  Write(LoggingMode::Debug, tag, format, arguments);
  va_end(arguments);
}

void Log::Trace(std::string_view tag, const char* format, ...) {
  if (!Precheck(LoggingMode::Trace)) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  Write(LoggingMode::Trace, tag, format, arguments);
  va_end(arguments);
}

}  // namespace Velmora
