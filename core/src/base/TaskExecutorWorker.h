#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/SystemInfoServiceInterface.h"
#include "VelmoraCore/TaskExecutor.h"
#include "base/LeftoverThreads.h"

namespace Velmora {

// The queue and the threads of one executor. Owned by the executor and by each of its threads, so
// that a task may destroy the executor. Each thread ends when the queue is empty after Stop; the
// executor joins it, or leaves it to LeftoverThreads when it runs on it.
class TaskExecutor::Worker : public std::enable_shared_from_this<Worker> {
 public:
  Worker(std::string name, std::shared_ptr<SystemInfoServiceInterface> systemInfoService);

  // Called once, before everything else.
  void Start(std::size_t threadCount);

  bool Execute(std::function<void()> task);
  bool Dispose(std::chrono::milliseconds timeout);

  // For the executor's destructor: afterwards no thread is left to join.
  void Shutdown();

 private:
  using Tasks = std::deque<std::function<void()>>;

  bool IsOwnThread() const;
  bool IsIdle() const { return tasks_.empty() && runningCount_ == 0; }
  void StartThread();
  void Run();
  void NameThread() const;
  void RunGuarded(const std::function<void()>& task) const;

  // Lets the threads end and settles the result. Returns the tasks that will not run, for the
  // caller to destroy without the lock.
  Tasks Stop();

  bool DisposeFromTask();
  void JoinThreads();

  const std::string name_;
  const std::shared_ptr<SystemInfoServiceInterface> systemInfoService_;

  std::mutex mutex_;
  std::condition_variable taskCame_;
  std::condition_variable becameIdle_;
  std::condition_variable progressed_;  // result_ was settled, or the threads were joined
  Tasks tasks_;
  std::size_t runningCount_ = 0;
  bool isDisposing_ = false;
  bool isStopped_ = false;
  bool isJoining_ = false;
  bool isJoined_ = false;
  std::optional<bool> result_;
  std::vector<FlaggedThread> threads_;
};

}  // namespace Velmora
