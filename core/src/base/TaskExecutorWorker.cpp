#include "base/TaskExecutorWorker.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "TaskExecutor";

// The worker on whose thread this is; tells a task's call from any other.
thread_local const void* workerOfThisThread = nullptr;

std::chrono::steady_clock::time_point Deadline(std::chrono::milliseconds timeout) {
  // Longer waits could not be told apart, and would overflow the clock.
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365);
  return std::chrono::steady_clock::now() +
         std::clamp(timeout, std::chrono::milliseconds::zero(), kLongest);
}

}  // namespace

TaskExecutor::Worker::Worker(std::string name,
                             std::shared_ptr<SystemInfoServiceInterface> systemInfoService)
    : name_(std::move(name)), systemInfoService_(std::move(systemInfoService)) {}

void TaskExecutor::Worker::Start(std::size_t threadCount) {
  try {
    for (std::size_t count = 0; count < std::max<std::size_t>(threadCount, 1); ++count) {
      StartThread();
    }
  } catch (...) {
    Shutdown();
    throw;
  }
}

void TaskExecutor::Worker::StartThread() {
  auto isDone = std::make_shared<std::atomic<bool>>(false);
  threads_.reserve(threads_.size() + 1);
  std::thread thread([self = shared_from_this(), isDone]() mutable {
    self->Run();
    self.reset();
    isDone->store(true);
  });
  threads_.push_back({std::move(thread), std::move(isDone)});
}

bool TaskExecutor::Worker::Execute(std::function<void()> task) {
  if (!task) {
    return false;
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (isDisposing_) {
      return false;
    }
    tasks_.push_back(std::move(task));
  }
  taskCame_.notify_one();
  return true;
}

bool TaskExecutor::Worker::Dispose(std::chrono::milliseconds timeout) {
  if (IsOwnThread()) {
    return DisposeFromTask();
  }
  {
    Tasks dropped;
    std::unique_lock<std::mutex> lock(mutex_);
    if (!isDisposing_) {
      isDisposing_ = true;
      becameIdle_.wait_until(lock, Deadline(timeout), [this] { return IsIdle(); });
      dropped = Stop();
    }
  }
  JoinThreads();
  const std::lock_guard<std::mutex> lock(mutex_);
  return *result_;
}

bool TaskExecutor::Worker::DisposeFromTask() {
  Tasks dropped;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!isDisposing_) {
    isDisposing_ = true;
    dropped = Stop();
    // The task that asks is not done, so it cannot be said that all were.
    result_ = false;
  }
  return result_.value_or(false);
}

TaskExecutor::Worker::Tasks TaskExecutor::Worker::Stop() {
  Tasks dropped = std::exchange(tasks_, Tasks());
  isStopped_ = true;
  result_ = dropped.empty();
  taskCame_.notify_all();
  progressed_.notify_all();
  return dropped;
}

void TaskExecutor::Worker::JoinThreads() {
  std::vector<FlaggedThread> threads;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    progressed_.wait(lock, [this] { return result_.has_value(); });
    if (isJoining_) {
      progressed_.wait(lock, [this] { return isJoined_; });
      return;
    }
    isJoining_ = true;
    threads = std::exchange(threads_, {});
  }
  for (FlaggedThread& flagged : threads) {
    if (flagged.thread.get_id() == std::this_thread::get_id()) {
      LeftoverThreads::Adopt(std::move(flagged));
    } else {
      flagged.thread.join();
    }
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  isJoined_ = true;
  progressed_.notify_all();
}

void TaskExecutor::Worker::Shutdown() {
  Dispose(std::chrono::milliseconds::zero());
  JoinThreads();
}

bool TaskExecutor::Worker::IsOwnThread() const { return workerOfThisThread == this; }

void TaskExecutor::Worker::NameThread() const {
  if (systemInfoService_ != nullptr) {
    systemInfoService_->SetCurrentThreadName(name_);
  }
}

void TaskExecutor::Worker::RunGuarded(const std::function<void()>& task) const {
  TryCatch(task, [this](SdkError& error) {
    Log::Error(kLogTag, "A task of %s failed: %s", name_.c_str(), error.what());
  });
}

void TaskExecutor::Worker::Run() {
  workerOfThisThread = this;
  RunGuarded([this] { NameThread(); });
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    taskCame_.wait(lock, [this] { return isStopped_ || !tasks_.empty(); });
    if (tasks_.empty()) {
      return;
    }
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    ++runningCount_;
    lock.unlock();
    RunGuarded(task);
    // What the task holds goes before the task counts as done, and without the lock.
    task = nullptr;
    lock.lock();
    --runningCount_;
    if (IsIdle()) {
      becameIdle_.notify_all();
    }
  }
}

}  // namespace Velmora
