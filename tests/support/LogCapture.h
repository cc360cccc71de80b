#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "VelmoraCore/LoggingMode.h"
#include "VelmoraCore/LoggingServiceInterface.h"

namespace TestSupport {

// Where a test calls from; taken at the call when it is a default argument. (clang 14 lacks what
// std::source_location is made of.)
struct CallPlace {
  const char* file = __builtin_FILE();
  int line = __builtin_LINE();
};

// How a line reaches the log sink; trace lines arrive as Debug.
enum class LogLevel { Debug, Warning, Error };

struct LogLine {
  LogLevel level = LogLevel::Debug;
  std::string tag;
  std::string message;

  friend bool operator==(const LogLine&, const LogLine&) = default;
};

std::ostream& operator<<(std::ostream& out, LogLevel level);
std::ostream& operator<<(std::ostream& out, const LogLine& line);

// Takes the place of the log sink for as long as it lives, and fails the test for every line that
// nobody expected. One at a time. Safe from any thread; lines that the test's own threads write
// must be written before it goes.
//
//   LogCapture log;
//   service->DeleteFile(path);
//   log.ExpectLine(LogLevel::Debug, "NativeFileSystemService", "Deleted file successfully: a");
class LogCapture {
 public:
  using TextMatcher = testing::Matcher<std::string>;

  // Lines beyond `level` are dropped. The former level comes back when the object goes; there is no
  // sink then.
  explicit LogCapture(Velmora::LoggingMode level = Velmora::LoggingMode::Trace);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // The sink, for a test whose subject sets the log's sink itself.
  std::shared_ptr<Velmora::LoggingServiceInterface> LoggingService() const;

  // Says that one such line is written during the object's life, before or after this call; it
  // fails the test at the end when it never came. `message` may be a text or a matcher.
  void ExpectLine(LogLevel level, const std::string& tag, const TextMatcher& message,
                  CallPlace where = {});

  // Says that any number of such lines may be written.
  void AllowLines(LogLevel level, const std::string& tag, const TextMatcher& message);

  // The lines so far, in order, that are neither expected nor allowed; they then count as seen.
  std::vector<LogLine> TakeLines();

  // Waits for a line that is not yet claimed, and claims it. Fails the test, and gives false, when
  // none comes in time.
  bool WaitForLine(LogLevel level, const std::string& tag, const TextMatcher& message,
                   CallPlace where = {});

 private:
  class Sink;
  struct Expectation;
  struct State;

  std::shared_ptr<State> state_;
  Velmora::LoggingMode formerLevel_;
};

}  // namespace TestSupport
