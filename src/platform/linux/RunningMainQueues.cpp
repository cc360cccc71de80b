#include "platform/linux/RunningMainQueues.h"

#include <utility>
#include <vector>

#include <unistd.h>

#include "platform/linux/MainQueueCore.h"

namespace Platform {

class RunningMainQueues::ExitHandler {
 public:
  ExitHandler() = default;
  ~ExitHandler() { OfProcess().StopAll(); }
  ExitHandler(const ExitHandler&) = delete;
  ExitHandler& operator=(const ExitHandler&) = delete;
};

RunningMainQueues::RunningMainQueues() : process_(::getpid()) {}

RunningMainQueues::~RunningMainQueues() = default;

RunningMainQueues& RunningMainQueues::OfProcess() {
  static auto& running = *new RunningMainQueues;
  static const ExitHandler exitHandler;
  return running;
}

std::size_t RunningMainQueues::Add(std::shared_ptr<MainQueueCore> core) {
  const std::lock_guard lock(mutex_);
  cores_[++lastNumber_] = std::move(core);
  return lastNumber_;
}

void RunningMainQueues::Remove(std::size_t number) {
  std::shared_ptr<MainQueueCore> removed;  // goes without the lock
  const std::lock_guard lock(mutex_);
  const auto found = cores_.find(number);
  if (found == cores_.end()) return;
  removed = std::move(found->second);
  cores_.erase(found);
}

std::shared_ptr<MainQueueCore> RunningMainQueues::Find(std::size_t number) {
  const std::lock_guard lock(mutex_);
  const auto found = cores_.find(number);
  return found == cores_.end() ? nullptr : found->second;
}

void RunningMainQueues::StopAll() {
  // A forked child has none of the threads, and would wait for them for ever.
  if (::getpid() != process_) return;
  std::vector<std::shared_ptr<MainQueueCore>> cores;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [number, core] : cores_) cores.push_back(core);
  }
  for (const auto& core : cores) core->Stop();
}

}  // namespace Platform
