#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace Platform {

// A thread that is joined when this object goes, unless it goes on that very thread: then the
// thread is kept until it is done, and joined when another one comes or goes. Belongs to one thread
// at a time.
class JoiningThread {
 public:
  JoiningThread() = default;

  // Throws std::system_error when no thread can be started.
  explicit JoiningThread(std::function<void()> work);
  ~JoiningThread();
  JoiningThread(JoiningThread&& other) noexcept = default;
  JoiningThread& operator=(JoiningThread&& other) noexcept;

  // Joins those kept that are done, without waiting for the others. True when none is left. Safe
  // from any thread.
  static bool JoinThoseDone();

 private:
  void End();

  std::thread thread_;
  std::shared_ptr<std::atomic<bool>> isDone_;
};

}  // namespace Platform
