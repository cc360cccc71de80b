#pragma once

#include <condition_variable>
#include <mutex>

#include <gtest/gtest.h>

#include "support/WaitUntil.h"

// Holds threads back until a test lets them go. A thread that is never let go fails the test.
class Gate {
 public:
  Gate() = default;
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  // Opens what was left closed, so that a test that has failed still ends.
  ~Gate() { Open(); }

  void Pass() {
    std::unique_lock<std::mutex> lock(mutex_);
    ++arrivals_;
    changed_.notify_all();
    EXPECT_TRUE(changed_.wait_for(lock, TestSupport::kDefaultDeadline, [this] { return isOpen_; }))
        << "the gate was never opened";
  }

  void Open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    isOpen_ = true;
    changed_.notify_all();
  }

  // Waits until so many threads have come to the gate in all.
  void AwaitArrivals(int count = 1) {
    std::unique_lock<std::mutex> lock(mutex_);
    ASSERT_TRUE(changed_.wait_for(lock, TestSupport::kDefaultDeadline, [this, count] {
      return arrivals_ >= count;
    })) << "nobody came to the gate";
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isOpen_ = false;
  int arrivals_ = 0;
};
