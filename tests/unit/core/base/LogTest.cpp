#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/Log.h"

namespace Velmora {
namespace {

using testing::ElementsAre;

// Keeps the lines as "<operation> <tag>: <message>".
class RecordingSink : public Object, public virtual LoggingServiceInterface {
 public:
  void Debug(const std::string& tag, const std::string& message) const override {
    Add("debug", tag, message);
  }
  void Warning(const std::string& tag, const std::string& message) const override {
    Add("warning", tag, message);
  }
  void Error(const std::string& tag, const std::string& message) const override {
    Add("error", tag, message);
  }

  std::vector<std::string> Lines() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
  }

 private:
  void Add(const std::string& operation, const std::string& tag, const std::string& message) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    lines_.push_back(operation + " " + tag + ": " + message);
  }

  mutable std::mutex mutex_;
  mutable std::vector<std::string> lines_;
};

// A sink on which every operation runs the same step, given by the derived class.
class StepSink : public Object, public virtual LoggingServiceInterface {
 public:
  void Debug(const std::string&, const std::string&) const override { Step(); }
  void Warning(const std::string&, const std::string&) const override { Step(); }
  void Error(const std::string&, const std::string&) const override { Step(); }

 private:
  virtual void Step() const = 0;
};

class ThrowingSink : public StepSink {
  void Step() const override { throw std::runtime_error("the sink is broken"); }
};

class LoggingSink : public StepSink {
  void Step() const override { Log::Error("Inner", "from the sink"); }
};

class ReplacingSink : public StepSink {
  void Step() const override { Log::SetLoggingService(nullptr); }
};

class LogTest : public testing::Test {
 protected:
  LogTest() { Log::SetLoggingService(sink_); }
  ~LogTest() override {
    Log::SetLoggingService(nullptr);
    Log::SetLogLevel(LoggingMode::Error);
  }

  const std::shared_ptr<RecordingSink> sink_ = std::make_shared<RecordingSink>();
};

void LogOneOfEach() {
  Log::Error("T", "e");
  Log::Warning("T", "w");
  Log::Debug("T", "d");
  Log::Trace("T", "t");
}

TEST_F(LogTest, StartsAtErrorLevel) {
  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Error);
  LogOneOfEach();
  EXPECT_THAT(sink_->Lines(), ElementsAre("error T: e"));
}

TEST_F(LogTest, WritesLinesUpToItsLevel) {
  Log::SetLogLevel(LoggingMode::Warning);
  LogOneOfEach();
  EXPECT_THAT(sink_->Lines(), ElementsAre("error T: e", "warning T: w"));
}

TEST_F(LogTest, WritesDebugLinesAtDebugLevel) {
  Log::SetLogLevel(LoggingMode::Debug);
  LogOneOfEach();
  EXPECT_THAT(sink_->Lines(), ElementsAre("error T: e", "warning T: w", "debug T: d"));
}

TEST_F(LogTest, SendsTraceLinesToTheSinksDebug) {
  Log::SetLogLevel(LoggingMode::Trace);
  LogOneOfEach();
  EXPECT_THAT(sink_->Lines(),
              ElementsAre("error T: e", "warning T: w", "debug T: d", "debug T: t"));
}

TEST_F(LogTest, TellsBeforehandWhatItWouldWrite) {
  Log::SetLogLevel(LoggingMode::Warning);

  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Warning);
  EXPECT_TRUE(Log::Precheck(LoggingMode::Error));
  EXPECT_TRUE(Log::Precheck(LoggingMode::Warning));
  EXPECT_FALSE(Log::Precheck(LoggingMode::Debug));
  EXPECT_FALSE(Log::Precheck(LoggingMode::Trace));
}

TEST_F(LogTest, NeverFormatsALineThatIsFilteredOut) {
  // Reading a text at this address would end the process.
  const auto* unreadable = reinterpret_cast<const char*>(std::uintptr_t{16});

  Log::Warning("T", "%s", unreadable);
  Log::Debug("T", "%s", unreadable);
  Log::Trace("T", "%s", unreadable);

  EXPECT_TRUE(sink_->Lines().empty());
}

TEST_F(LogTest, FormatsAsPrintfDoes) {
  Log::Error("Tag", "%s has %d of %.2f%% (%zu)", "it", -3, 2.5, std::size_t{7});
  EXPECT_THAT(sink_->Lines(), ElementsAre("error Tag: it has -3 of 2.50% (7)"));
}

TEST_F(LogTest, WritesEmptyTagsAndMessages) {
  const char* nothing = "";
  Log::Error("", "%s", nothing);
  EXPECT_THAT(sink_->Lines(), ElementsAre("error : "));
}

TEST_F(LogTest, TakesTagsThatAreNotTerminated) {
  const std::string tags = "FirstSecond";
  Log::Error(std::string_view(tags).substr(0, 5), "m");
  EXPECT_THAT(sink_->Lines(), ElementsAre("error First: m"));
}

class LogLength : public LogTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(LogLength, DoesNotCutALine) {
  const std::string message(GetParam(), 'x');
  Log::Error("T", "%s", message.c_str());
  ASSERT_EQ(sink_->Lines().size(), 1U);
  EXPECT_EQ(sink_->Lines().front(), "error T: " + message);
}

INSTANTIATE_TEST_SUITE_P(Lengths, LogLength, testing::Values(1, 510, 511, 512, 513, 10'000'000));

TEST_F(LogTest, WritesTheBareFormatWhenItCannotBeFilledIn) {
  const wchar_t unwritable[] = {static_cast<wchar_t>(0x7FFFFFFF), L'\0'};
  Log::Error("T", "wide %ls", unwritable);
  EXPECT_THAT(sink_->Lines(), ElementsAre("error T: wide %ls"));
}

TEST_F(LogTest, LetsGoOfTheFormerSink) {
  const auto next = std::make_shared<RecordingSink>();
  Log::SetLoggingService(next);
  Log::Error("T", "m");

  EXPECT_EQ(sink_.use_count(), 1);
  EXPECT_TRUE(sink_->Lines().empty());
  EXPECT_THAT(next->Lines(), ElementsAre("error T: m"));
}

std::string StandardErrorOf(const std::function<void()>& attempt) {
  testing::internal::CaptureStderr();
  attempt();
  return testing::internal::GetCapturedStderr();
}

TEST_F(LogTest, WritesToStandardErrorWithoutASink) {
  Log::SetLoggingService(nullptr);
  Log::SetLogLevel(LoggingMode::Trace);
  EXPECT_EQ(StandardErrorOf(LogOneOfEach),
            "[VXSDK ERROR <T>]: e\n"
            "[VXSDK WARNING <T>]: w\n"
            "[VXSDK DEBUG <T>]: d\n"
            "[VXSDK DEBUG <T>]: t\n");
}

TEST_F(LogTest, WritesToStandardErrorWhenTheSinkThrows) {
  Log::SetLoggingService(std::make_shared<ThrowingSink>());
  EXPECT_EQ(StandardErrorOf([] { Log::Error("T", "kept"); }), "[VXSDK ERROR <T>]: kept\n");
}

TEST_F(LogTest, ComesBackToASinkAfterItThrew) {
  Log::SetLoggingService(std::make_shared<ThrowingSink>());
  StandardErrorOf([] { Log::Error("T", "first"); });
  Log::SetLoggingService(sink_);
  Log::Error("T", "second");
  EXPECT_THAT(sink_->Lines(), ElementsAre("error T: second"));
}

TEST_F(LogTest, DoesNotLeadASinksOwnLinesBackIntoIt) {
  Log::SetLoggingService(std::make_shared<LoggingSink>());
  EXPECT_EQ(StandardErrorOf([] { Log::Error("T", "outer"); }),
            "[VXSDK ERROR <Inner>]: from the sink\n");
}

TEST_F(LogTest, HoldsNoLockWhileItCallsTheSink) {
  Log::SetLoggingService(std::make_shared<ReplacingSink>());
  Log::Error("T", "replaces the sink from inside it");
  EXPECT_EQ(StandardErrorOf([] { Log::Error("T", "after"); }), "[VXSDK ERROR <T>]: after\n");
}

TEST_F(LogTest, LosesNoLineWhileTheSinkIsReplaced) {
  constexpr int kThreads = 4;
  constexpr int kLines = 500;
  std::atomic<int> running{kThreads};
  std::vector<std::thread> writers;
  for (int thread = 0; thread < kThreads; ++thread) {
    writers.emplace_back([&running, thread] {
      for (int line = 0; line < kLines; ++line) {
        Log::Error("T", "%d/%d", thread, line);
        Log::Debug("T", "%d/%d", thread, line);
      }
      --running;
    });
  }
  std::vector<std::shared_ptr<RecordingSink>> sinks = {sink_};
  while (running > 0) {
    sinks.push_back(std::make_shared<RecordingSink>());
    Log::SetLoggingService(sinks.back());
  }
  for (std::thread& writer : writers) {
    writer.join();
  }

  std::size_t lines = 0;
  for (const auto& sink : sinks) {
    lines += sink->Lines().size();
  }
  EXPECT_EQ(lines, static_cast<std::size_t>(kThreads * kLines));
}

TEST_F(LogTest, ChangesItsLevelWhileOthersLog) {
  std::atomic<bool> isDone{false};
  std::thread writer([&isDone] {
    for (int line = 0; line < 1000; ++line) {
      Log::Warning("T", "%d", line);
    }
    isDone = true;
  });
  while (!isDone) {
    Log::SetLogLevel(LoggingMode::Warning);
    Log::SetLogLevel(LoggingMode::Error);
  }
  writer.join();

  EXPECT_LE(sink_->Lines().size(), 1000U);
}

struct LogsInItsDestructor {
  ~LogsInItsDestructor() { Log::Error("Late", "still heard"); }
};

TEST(LogDeathTest, IsHeardWhileTheProcessEnds) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        // Made before the log is first used, and so destroyed after everything that it could own.
        static const LogsInItsDestructor late;
        Log::SetLoggingService(std::make_shared<RecordingSink>());
        Log::SetLoggingService(nullptr);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "\\[VXSDK ERROR <Late>\\]: still heard");
}

}  // namespace
}  // namespace Velmora
