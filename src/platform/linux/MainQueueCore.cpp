#include "platform/linux/MainQueueCore.h"

#include <algorithm>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

#include <pthread.h>

#include "platform/linux/RunningMainQueues.h"

namespace Platform {

MainQueueCore::MainQueueCore(std::shared_ptr<SystemLog> systemLog, GMainContext* context,
                             std::chrono::milliseconds grace)
    : systemLog_(std::move(systemLog)),
      context_(context == nullptr ? nullptr : g_main_context_ref(context)),
      grace_(grace) {}

MainQueueCore::~MainQueueCore() = default;

void MainQueueCore::Add(Work work) {
  if (!work) return;
  if (!EnsureThread()) {
    systemLog_->Write("The main queue has no thread; its work is dropped.");
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    if (isStopped_) return;
    waiting_.push_back(std::move(work));
  }
  changed_.notify_all();
}

std::shared_ptr<MainQueueCore::Tick> MainQueueCore::AddTick(Clock::duration interval, Work work) {
  auto tick = std::make_shared<Tick>();
  tick->work = std::move(work);
  // A timer without an interval would leave the thread no rest.
  tick->interval = std::max<Clock::duration>(interval, std::chrono::milliseconds(1));
  tick->due = Clock::now() + tick->interval;
  if (!EnsureThread()) {
    systemLog_->Write("The main queue has no thread; a timer does not run.");
    return tick;
  }
  {
    const std::lock_guard lock(mutex_);
    if (isStopped_) return tick;
    ticks_.push_back(tick);
  }
  changed_.notify_all();
  return tick;
}

void MainQueueCore::Cancel(const std::shared_ptr<Tick>& tick) {
  const std::lock_guard lock(mutex_);
  tick->isCancelled = true;
  std::erase(ticks_, tick);
}

void MainQueueCore::Stop() {
  StopRunning();
  if (!Join()) return;
  std::size_t number = 0;
  {
    const std::lock_guard lock(mutex_);
    number = number_;
  }
  RunningMainQueues::OfProcess().Remove(number);
}

// False when none can be started; the next call tries again.
bool MainQueueCore::EnsureThread() {
  const std::lock_guard lock(mutex_);
  if (number_ != 0 || isStopped_) return true;
  RunningMainQueues& running = RunningMainQueues::OfProcess();
  number_ = running.Add(shared_from_this());
  try {
    thread_ = std::thread([self = shared_from_this()] { self->Run(); });
    return true;
  } catch (const std::system_error&) {
    running.Remove(std::exchange(number_, 0));
    return false;
  }
}

void MainQueueCore::Run() {
  ::pthread_setname_np(::pthread_self(), "QEXMainQueue");
  Lock lock(mutex_);
  if (isStopped_) return;
  probe_ = Attach(&MainQueueCore::OnContextRuns);
  const auto isDecided = [this] { return contextRuns_ || isStopped_; };
  if (grace_ == kNoEndOfGrace) {
    changed_.wait(lock, isDecided);
  } else {
    changed_.wait_for(lock, grace_, isDecided);
  }
  while (!isStopped_) {
    QueueDueTicks();
    if (waiting_.empty() || handOver_ != nullptr) {
      WaitForChange(lock);
    } else if (contextRuns_) {
      HandOver();
    } else {
      RunFirst(lock);
    }
  }
}

void MainQueueCore::QueueDueTicks() {
  const auto now = Clock::now();
  for (const auto& tick : ticks_) {
    if (tick->due > now) continue;
    tick->due = now + tick->interval;
    if (std::exchange(tick->isWaiting, true)) continue;
    waiting_.emplace_back([this, tick] {
      {
        const std::lock_guard lock(mutex_);
        tick->isWaiting = false;
        if (tick->isCancelled) return;
      }
      tick->work();
    });
  }
}

void MainQueueCore::WaitForChange(Lock& lock) {
  const auto next = std::min_element(
      ticks_.begin(), ticks_.end(), [](auto& left, auto& right) { return left->due < right->due; });
  if (next == ticks_.end()) {
    changed_.wait(lock);
  } else {
    const auto due = (*next)->due;
    changed_.wait_until(lock, due);
  }
}

void MainQueueCore::HandOver() { handOver_ = Attach(&MainQueueCore::OnHandedOver); }

void MainQueueCore::RunFirst(Lock& lock) {
  Work work = std::move(waiting_.front());
  waiting_.pop_front();
  isRunning_ = true;
  runningOn_ = std::this_thread::get_id();
  lock.unlock();
  try {
    work();
  } catch (const std::exception& error) {
    systemLog_->Write(std::string("Work on the main queue threw: ") + error.what());
  } catch (...) {
    systemLog_->Write("Work on the main queue threw something that is no exception.");
  }
  work = nullptr;  // what it holds goes without the lock
  lock.lock();
  isRunning_ = false;
  changed_.notify_all();
}

// On the thread that runs the context. What is added meanwhile waits for the next time, so that the
// application's other sources have their turn.
void MainQueueCore::RunWaiting() {
  Lock lock(mutex_);
  for (std::size_t count = waiting_.size(); count > 0 && !waiting_.empty(); --count) {
    RunFirst(lock);
  }
  if (handOver_ != nullptr) g_source_unref(std::exchange(handOver_, nullptr));
  changed_.notify_all();
}

void MainQueueCore::StopRunning() {
  std::deque<Work> dropped;
  std::vector<std::shared_ptr<Tick>> droppedTicks;
  GSource* sources[] = {nullptr, nullptr};
  {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    dropped.swap(waiting_);
    droppedTicks.swap(ticks_);
    sources[0] = std::exchange(probe_, nullptr);
    sources[1] = std::exchange(handOver_, nullptr);
  }
  changed_.notify_all();
  // What they hold goes without the lock.
  dropped.clear();
  droppedTicks.clear();
  for (GSource* source : sources) {
    if (source == nullptr) continue;
    g_source_destroy(source);
    g_source_unref(source);
  }
  Lock lock(mutex_);
  if (runningOn_ == std::this_thread::get_id()) return;
  changed_.wait(lock, [this] { return !isRunning_; });
}

// False when the calling thread is the one to join.
bool MainQueueCore::Join() {
  if (thread_.get_id() == std::this_thread::get_id()) return false;
  if (thread_.joinable()) thread_.join();
  return true;
}

// A source that calls once, with this queue's number as its argument: this may be gone by then.
GSource* MainQueueCore::Attach(GSourceFunc call) {
  GSource* source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(source, call, GSIZE_TO_POINTER(number_), nullptr);
  g_source_attach(source, context_.get());
  return source;
}

gboolean MainQueueCore::OnContextRuns(gpointer number) noexcept {
  const auto core = RunningMainQueues::OfProcess().Find(GPOINTER_TO_SIZE(number));
  if (!core) return G_SOURCE_REMOVE;
  const std::lock_guard lock(core->mutex_);
  core->contextRuns_ = true;
  if (core->probe_ != nullptr) g_source_unref(std::exchange(core->probe_, nullptr));
  core->changed_.notify_all();
  return G_SOURCE_REMOVE;
}

gboolean MainQueueCore::OnHandedOver(gpointer number) noexcept {
  const auto core = RunningMainQueues::OfProcess().Find(GPOINTER_TO_SIZE(number));
  if (core) core->RunWaiting();
  return G_SOURCE_REMOVE;
}

}  // namespace Platform
