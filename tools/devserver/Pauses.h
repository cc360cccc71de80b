#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace DevServer {

// The waiting that clients are made to do; it ends with the server. Safe from any thread.
class Pauses {
 public:
  // False when the server is ending.
  bool Wait(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    return !ended_.wait_for(lock, time, [this] { return isEnded_; });
  }

  void End() {
    const std::lock_guard lock(mutex_);
    isEnded_ = true;
    ended_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable ended_;
  bool isEnded_ = false;
};

}  // namespace DevServer
