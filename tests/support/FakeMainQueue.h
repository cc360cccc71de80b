#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "support/FakeSystemLog.h"
#include "support/Guarded.h"

namespace TestSupport {

// A main queue that runs when the test says so, on the test's thread, with a clock of its own.
class FakeMainQueue final : public Platform::MainQueue {
 public:
  explicit FakeMainQueue(std::shared_ptr<Platform::SystemLog> systemLog);
  ~FakeMainQueue() override;

  // Runs what waits, and what that adds, until nothing does.
  void RunAll();

  // Lets time pass: timers tick in their order, and everything that waits is run.
  void Advance(std::chrono::milliseconds time);

  std::size_t WaitingCount() const;
  std::size_t TimerCount() const;

  void Async(std::function<void()> work) override;
  std::unique_ptr<Platform::MainQueueTimer> Repeat(std::chrono::milliseconds interval,
                                                   std::function<void()> tick) override;

 private:
  class Timer;
  struct Tick;
  using Ticks = std::vector<std::shared_ptr<Tick>>;

  void Run(const std::function<void()>& work) const;

  const std::shared_ptr<Platform::SystemLog> systemLog_;
  Guarded<std::deque<std::function<void()>>> waiting_;
  const std::shared_ptr<Guarded<Ticks>> ticks_;
  std::chrono::milliseconds now_{0};
};

}  // namespace TestSupport
