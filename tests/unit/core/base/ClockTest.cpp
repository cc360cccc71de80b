#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/LeftoverThreads.h"
#include "base/SystemClock.h"
#include "support/Guarded.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Guarded;
using TestSupport::LogLevel;
using TestSupport::ManualClock;
using TestSupport::WaitUntil;
using Velmora::Clock;
using Velmora::SystemClock;

using Names = Guarded<std::vector<std::string>>;

Clock::Action Noting(Names& names, const std::string& name) {
  return [&names, name] { names.With([&](auto& all) { all.push_back(name); }); };
}

class SystemClockTest : public testing::Test {
 protected:
  TestSupport::LogCapture log_;
  Names names_;
};

TEST_F(SystemClockTest, TellsTheTimeOfDay) {
  SystemClock clock(nullptr);
  const auto before = std::chrono::system_clock::now();
  const auto now = clock.Now();
  EXPECT_GE(now, before);
  EXPECT_LE(now, std::chrono::system_clock::now());
}

TEST_F(SystemClockTest, CallsInTheOrderOfTheirTimesAndNeverBefore) {
  SystemClock clock(nullptr);
  Guarded<std::chrono::steady_clock::time_point> called;
  const auto begin = std::chrono::steady_clock::now();
  clock.CallAfter(40ms, [&] {
    called.Set(std::chrono::steady_clock::now());
    Noting(names_, "late")();
  });
  clock.CallAfter(10ms, Noting(names_, "early"));
  clock.CallAfter(-1h, Noting(names_, "first of those due"));
  clock.CallAfter(0ms, Noting(names_, "at once"));
  EXPECT_TRUE(WaitUntil([&] { return names_.Get().size() == 4; }));
  EXPECT_GE(called.Get() - begin, 40ms);
  EXPECT_EQ(names_.Get().at(2), "early");
  EXPECT_EQ(names_.Get().at(3), "late");
}

TEST_F(SystemClockTest, CallsOnOneThreadOfItsOwnThatBeginsWithItsFirstCall) {
  Guarded<std::vector<std::thread::id>> threads;
  const auto note = [&] {
    threads.With([](auto& all) { all.push_back(std::this_thread::get_id()); });
  };
  SystemClock clock(note);
  clock.CallAfter(0ms, note);
  clock.CallAfter(1ms, note);
  EXPECT_TRUE(WaitUntil([&] { return threads.Get().size() == 3; }));
  EXPECT_NE(threads.Get()[0], std::this_thread::get_id());
  EXPECT_THAT(threads.Get(), testing::Each(threads.Get()[0]));
}

TEST_F(SystemClockTest, DoesNotCallWhatIsCancelled) {
  SystemClock clock(nullptr);
  const auto ticket = clock.CallAfter(5ms, Noting(names_, "cancelled"));
  clock.Cancel(ticket);
  clock.Cancel(ticket);
  clock.CallAfter(20ms, Noting(names_, "kept"));
  EXPECT_TRUE(WaitUntil([&] { return !names_.Get().empty(); }));
  EXPECT_THAT(names_.Get(), ElementsAre("kept"));
}

TEST_F(SystemClockTest, WaitsForTheCallUnderWayWhenStoppedAndForgetsTheRest) {
  SystemClock clock(nullptr);
  std::promise<void> begun;
  std::promise<void> gate;
  clock.CallAfter(0ms, [&] {
    begun.set_value();
    gate.get_future().wait();
    Noting(names_, "done")();
  });
  clock.CallAfter(1h, Noting(names_, "forgotten"));
  begun.get_future().wait();
  std::thread opener([&] { gate.set_value(); });
  clock.Stop();
  EXPECT_THAT(names_.Get(), ElementsAre("done"));
  clock.CallAfter(0ms, Noting(names_, "too late"));
  clock.Stop();
  opener.join();
  EXPECT_THAT(names_.Get(), ElementsAre("done"));
}

TEST_F(SystemClockTest, MayGoOnItsOwnThread) {
  auto clock = std::make_shared<SystemClock>(nullptr);
  std::weak_ptr<SystemClock> observer = clock;
  std::promise<void> gate;
  auto opened = gate.get_future().share();
  SystemClock& target = *clock;
  target.CallAfter(0ms, [owner = std::move(clock), opened]() mutable {
    opened.wait();
    owner = nullptr;
  });
  gate.set_value();
  EXPECT_TRUE(WaitUntil([&] { return observer.expired(); }));
  EXPECT_TRUE(WaitUntil([] { return Velmora::LeftoverThreads::JoinThoseDone(); }));
}

TEST_F(SystemClockTest, GoesOnAfterACallThatThrows) {
  log_.ExpectLine(LogLevel::Error, "Clock",
                  "what was to happen at its time failed: std.exception: spilt");
  SystemClock clock(nullptr);
  clock.CallAfter(0ms, [] { throw std::runtime_error("spilt"); });
  clock.CallAfter(1ms, Noting(names_, "next"));
  EXPECT_TRUE(WaitUntil([&] { return !names_.Get().empty(); }));
}

TEST(ManualClockTest, StandsStillUntilItIsMoved) {
  ManualClock clock;
  Names names;
  EXPECT_EQ(clock.Now(), ManualClock::kStart);
  clock.CallAfter(30s, Noting(names, "second"));
  clock.CallAfter(10s, [&] {
    EXPECT_EQ(clock.Now(), ManualClock::kStart + 10s);
    clock.CallAfter(5s, Noting(names, "first"));
  });
  const auto cancelled = clock.CallAfter(1s, Noting(names, "never"));
  EXPECT_THAT(clock.Waits(), ElementsAre(1s, 10s, 30s));
  clock.Cancel(cancelled);
  clock.Advance(9s);
  EXPECT_THAT(names.Get(), IsEmpty());
  clock.Advance(21s);
  EXPECT_THAT(names.Get(), ElementsAre("first", "second"));
  EXPECT_EQ(clock.Now(), ManualClock::kStart + 30s);
}

TEST(ManualClockTest, WaitsAsLongWhenTheTimeOfDayIsSet) {
  ManualClock clock;
  Names names;
  clock.CallAfter(1s, Noting(names, "called"));
  clock.SetTimeOfDay(ManualClock::kStart + 24h);
  EXPECT_THAT(names.Get(), IsEmpty());
  clock.Advance(1s);
  EXPECT_THAT(names.Get(), ElementsAre("called"));
  EXPECT_EQ(clock.Now(), ManualClock::kStart + 24h + 1s);
}

}  // namespace
