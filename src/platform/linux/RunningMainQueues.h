#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include <sys/types.h>

namespace Platform {

class MainQueueCore;

// The main queues of the process that have a thread. Whoever waits in a context to be called knows
// its queue by number and finds it here. When the process ends they are stopped: the device that
// owns them may never be destroyed, and their work must not meet what other exit handlers have
// destroyed. Safe from any thread; never destroyed.
class RunningMainQueues {
 public:
  static RunningMainQueues& OfProcess();

  RunningMainQueues(const RunningMainQueues&) = delete;
  RunningMainQueues& operator=(const RunningMainQueues&) = delete;

  // Keeps the queue until it is removed, and gives its number.
  std::size_t Add(std::shared_ptr<MainQueueCore> core);
  void Remove(std::size_t number);

  // Null when there is none of that number.
  std::shared_ptr<MainQueueCore> Find(std::size_t number);

 private:
  class ExitHandler;

  RunningMainQueues();
  ~RunningMainQueues();
  void StopAll();

  const pid_t process_;
  std::mutex mutex_;  // guards what follows
  std::size_t lastNumber_ = 0;
  std::map<std::size_t, std::shared_ptr<MainQueueCore>> cores_;
};

}  // namespace Platform
