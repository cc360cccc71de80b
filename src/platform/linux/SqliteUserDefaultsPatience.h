#pragma once

#include <chrono>

#include <poll.h>
#include <sched.h>

namespace Platform {

// Waits, in short steps, for a lock that has no way to wait with a deadline. Holders are done
// within microseconds as a rule, so the first steps only let others run.
class SqliteUserDefaultsPatience {
 public:
  explicit SqliteUserDefaultsPatience(std::chrono::milliseconds limit) : limit_(limit) {}

  void Begin() {
    steps_ = 0;
    end_ = Clock::now() + limit_;
  }

  // False, without waiting, when the time since Begin() is used up.
  bool WaitOneStep() {
    constexpr int kStepsWithoutPause = 50;
    constexpr int kPauseInMilliseconds = 1;
    if (Clock::now() >= end_) return false;
    if (++steps_ <= kStepsWithoutPause) {
      ::sched_yield();
    } else {
      ::poll(nullptr, 0, kPauseInMilliseconds);
    }
    return true;
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::chrono::milliseconds limit_;
  Clock::time_point end_{};
  int steps_ = 0;
};

}  // namespace Platform
