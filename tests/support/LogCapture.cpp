#include "support/LogCapture.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <sstream>
#include <utility>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/LoggingServiceInterface.h"
#include "VelmoraCore/Object.h"
#include "support/WaitUntil.h"

namespace TestSupport {

std::ostream& operator<<(std::ostream& out, LogLevel level) {
  switch (level) {
    case LogLevel::Debug:
      return out << "Debug";
    case LogLevel::Warning:
      return out << "Warning";
    case LogLevel::Error:
      return out << "Error";
  }
  return out << "level " << static_cast<int>(level);
}

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << line.level << " <" << line.tag << "> \"" << line.message << '"';
}

struct LogCapture::Expectation {
  LogLevel level;
  std::string tag;
  TextMatcher message;
  CallPlace where;

  bool Matches(const LogLine& line) const {
    return line.level == level && line.tag == tag && message.Matches(line.message);
  }

  std::string Description() const {
    std::ostringstream text;
    text << level << " <" << tag << "> with a message that ";
    message.DescribeTo(&text);
    return text.str();
  }
};

struct LogCapture::State {
  std::mutex mutex;
  std::condition_variable added;
  std::vector<LogLine> lines;  // those not yet claimed
  std::vector<Expectation> expected;
  std::vector<Expectation> allowed;

  // Takes out the first line that fits. The mutex must be held.
  bool Claim(const Expectation& expectation) {
    const auto line = std::find_if(lines.begin(), lines.end(), [&](const LogLine& candidate) {
      return expectation.Matches(candidate);
    });
    if (line == lines.end()) return false;
    lines.erase(line);
    return true;
  }

  // Lets the expectations claim their lines, in the order in which they were stated. The mutex
  // must be held.
  void Settle() {
    std::erase_if(expected, [this](const Expectation& item) { return Claim(item); });
    for (const Expectation& item : allowed) {
      std::erase_if(lines, [&](const LogLine& line) { return item.Matches(line); });
    }
  }
};

class LogCapture::Sink final : public Velmora::Object,
                               public virtual Velmora::LoggingServiceInterface {
 public:
  explicit Sink(std::shared_ptr<State> state) : state_(std::move(state)) {}

  void Debug(const std::string& tag, const std::string& message) const override {
    Add({LogLevel::Debug, tag, message});
  }
  void Warning(const std::string& tag, const std::string& message) const override {
    Add({LogLevel::Warning, tag, message});
  }
  void Error(const std::string& tag, const std::string& message) const override {
    Add({LogLevel::Error, tag, message});
  }

 private:
  void Add(LogLine line) const {
    const std::lock_guard lock(state_->mutex);
    state_->lines.push_back(std::move(line));
    state_->added.notify_all();
  }

  std::shared_ptr<State> state_;
};

LogCapture::LogCapture(Velmora::LoggingMode level)
    : state_(std::make_shared<State>()), formerLevel_(Velmora::Log::GetLogLevel()) {
  Velmora::Log::SetLogLevel(level);
  Velmora::Log::SetLoggingService(std::make_shared<Sink>(state_));
}

LogCapture::~LogCapture() {
  Velmora::Log::SetLoggingService(nullptr);
  Velmora::Log::SetLogLevel(formerLevel_);
  const std::lock_guard lock(state_->mutex);
  state_->Settle();
  for (const Expectation& missing : state_->expected) {
    ADD_FAILURE_AT(missing.where.file, missing.where.line)
        << "expected log line never came: " << missing.Description();
  }
  for (const LogLine& line : state_->lines) ADD_FAILURE() << "unexpected log line: " << line;
}

std::shared_ptr<Velmora::LoggingServiceInterface> LogCapture::LoggingService() const {
  return std::make_shared<Sink>(state_);
}

void LogCapture::ExpectLine(LogLevel level, const std::string& tag, const TextMatcher& message,
                            CallPlace where) {
  const std::lock_guard lock(state_->mutex);
  state_->expected.push_back({level, tag, message, where});
}

void LogCapture::AllowLines(LogLevel level, const std::string& tag, const TextMatcher& message) {
  const std::lock_guard lock(state_->mutex);
  state_->allowed.push_back({level, tag, message, {}});
}

std::vector<LogLine> LogCapture::TakeLines() {
  const std::lock_guard lock(state_->mutex);
  state_->Settle();
  return std::exchange(state_->lines, {});
}

bool LogCapture::WaitForLine(LogLevel level, const std::string& tag, const TextMatcher& message,
                             CallPlace where) {
  const Expectation expectation{level, tag, message, where};
  std::unique_lock lock(state_->mutex);
  const bool came =
      state_->added.wait_for(lock, kDefaultDeadline, [&] { return state_->Claim(expectation); });
  if (!came) {
    ADD_FAILURE_AT(where.file, where.line)
        << "log line did not come in time: " << expectation.Description();
  }
  return came;
}

}  // namespace TestSupport
