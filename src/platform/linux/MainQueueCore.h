#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <glib.h>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "platform/linux/GlibPointers.h"

namespace Platform {

// What does the work of a GlibMainQueue. Safe from any thread; must be made as a shared pointer,
// and be stopped before it goes.
class MainQueueCore : public std::enable_shared_from_this<MainQueueCore> {
 public:
  using Clock = std::chrono::steady_clock;
  using Work = std::function<void()>;

  // A grace that is always long enough: without a loop, work waits for one.
  static constexpr std::chrono::milliseconds kNoEndOfGrace = std::chrono::milliseconds::max();

  // A repeating piece of work; guarded by the core's lock, save for `work`, which never changes.
  struct Tick {
    Work work;
    Clock::duration interval{};
    Clock::time_point due;
    bool isWaiting = false;
    bool isCancelled = false;
  };

  // `context` must be run by no more than one thread at a time; the first work waits for it up to
  // `grace`. Null stands for the default context, which is not made before that.
  MainQueueCore(std::shared_ptr<SystemLog> systemLog, GMainContext* context,
                std::chrono::milliseconds grace);
  ~MainQueueCore();
  MainQueueCore(const MainQueueCore&) = delete;
  MainQueueCore& operator=(const MainQueueCore&) = delete;

  void Add(Work work);
  std::shared_ptr<Tick> AddTick(Clock::duration interval, Work work);
  void Cancel(const std::shared_ptr<Tick>& tick);

  // Drops what waits and waits for what is under way, unless that is the caller. No work begins
  // afterwards. A core that is stopped by its own work is joined when the process ends.
  void Stop();

 private:
  using Lock = std::unique_lock<std::mutex>;

  bool EnsureThread();
  void Run();
  void QueueDueTicks();
  void WaitForChange(Lock& lock);
  void HandOver();
  void RunFirst(Lock& lock);
  void RunWaiting();
  void StopRunning();
  bool Join();
  GSource* Attach(GSourceFunc call);
  static gboolean OnContextRuns(gpointer number) noexcept;
  static gboolean OnHandedOver(gpointer number) noexcept;

  const std::shared_ptr<SystemLog> systemLog_;
  const GMainContextPointer context_;
  const std::chrono::milliseconds grace_;

  std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  std::deque<Work> waiting_;
  std::vector<std::shared_ptr<Tick>> ticks_;
  GSource* probe_ = nullptr;     // dispatched when the context is run for the first time
  GSource* handOver_ = nullptr;  // set: what waits is the context's to do
  std::size_t number_ = 0;       // among the queues that run; 0 without a thread
  bool contextRuns_ = false;
  bool isStopped_ = false;
  bool isRunning_ = false;  // a piece of work is under way, on the thread below
  std::thread::id runningOn_;
  std::thread thread_;
};

}  // namespace Platform
