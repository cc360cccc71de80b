#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "base/LeftoverThreads.h"

namespace Velmora {

// The queue whose thread this is; empty on every other thread.
inline thread_local const void* serialQueueOfThisThread = nullptr;

// How much may wait: so many items, and no further one once they come to so many bytes together.
struct QueueRoom {
  std::size_t items = 0;
  std::size_t bytes = std::numeric_limits<std::int64_t>::max() / 4;
};

// A bounded queue with a thread of its own that handles the items one by one, in order.
//
// Every operation may be called on any thread, also on the queue's own. The destructor stops the
// queue and joins the thread; on the queue's own thread it leaves the join to LeftoverThreads. No
// lock is held while a handler is called.
template <class Item>
class SerialQueue {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  // Called on the thread. They belong to it until it ends, and so does what they capture.
  struct Handlers {
    std::function<void()> begin;                      // first
    std::function<void(Item)> handle;                 // for each item; must not throw
    std::function<void(std::size_t)> reportOverflow;  // so many were counted; once there is room
                                                      // again, or at the end
    std::function<void()> end;                        // last, after Stop
  };

  enum class Outcome { Accepted, Full, Stopped };

  // How an item meets a full queue: it is refused, or refused and counted for `reportOverflow`, or
  // it may use the reserve and is refused and counted when that is full too, or it does not count
  // at all and always gets in.
  enum class Admission { Refusable, CountedWhenRefused, Reserved, Always };

  // `reserve` is room beyond `capacity` that only Reserved items may take.
  explicit SerialQueue(QueueRoom capacity, QueueRoom reserve = {0, 0})
      : capacity_(capacity),
        largest_{capacity.items + reserve.items, capacity.bytes + reserve.bytes} {}

  ~SerialQueue() {
    Stop();
    if (!thread_.joinable()) return;
    if (IsOwnThread()) {
      LeftoverThreads::Adopt({std::move(thread_), isDone_});
    } else {
      thread_.join();
    }
  }

  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  // Begins to handle items; those pushed before have waited. Called once; does nothing, and gives
  // false, after Stop. Throws std::system_error when no thread can be had.
  bool Start(Handlers handlers) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (isStopped_) return false;
    thread_ = std::thread([this, handlers = std::move(handlers), isDone = isDone_]() mutable {
      serialQueueOfThisThread = this;
      Run(handlers);
      // May end this queue's life.
      handlers = Handlers();
      isDone->store(true);
    });
    isStarted_ = true;
    return true;
  }

  // `bytes` is what the item counts for beside being one.
  Outcome Push(Item item, Admission admission, std::size_t bytes = 0) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (isStopped_) return Outcome::Stopped;
      if (admission != Admission::Always) {
        if (!HasRoom(admission == Admission::Reserved ? largest_ : capacity_)) {
          if (admission != Admission::Refusable) ++refused_;
          return Outcome::Full;
        }
        ++unclaimed_;
        unclaimedBytes_ += static_cast<std::int64_t>(bytes);
        accepted_.fetch_add(1);
      }
      waiting_.push_back(
          {std::move(item), static_cast<std::int64_t>(bytes), admission != Admission::Always});
      if (!isSleeping_) return Outcome::Accepted;
      isSleeping_ = false;
    }
    itemCame_.notify_one();
    return Outcome::Accepted;
  }

  // Counts one for `reportOverflow` that never came as far as this queue.
  void CountRefused() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!isStopped_) ++refused_;
  }

  // How many items were accepted so far, those that always get in left out.
  std::int64_t AcceptedCount() const { return accepted_.load(); }

  // True when, by the deadline, nothing waits and nothing is being handled. Waits for nothing, and
  // is false, on the queue's own thread.
  bool WaitUntilIdle(Deadline deadline) {
    if (IsOwnThread()) return false;
    std::unique_lock<std::mutex> lock(mutex_);
    return becameIdle_.wait_until(lock, deadline,
                                  [this] { return isStopped_ || (waiting_.empty() && !isBusy_); });
  }

  // Drops what waits; the thread ends after the item that it is handling. Returns how many items
  // were dropped, those that always get in left out, and, when no thread will report them, those
  // that were refused and counted; a later call returns 0.
  std::size_t Stop() {
    std::deque<Entry> dropped;
    std::int64_t count = 0;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (isStopped_) return 0;
      isStopped_ = true;
      count = unclaimed_.exchange(kNothingLeft);
      if (!isStarted_) count += static_cast<std::int64_t>(std::exchange(refused_, 0));
      dropped.swap(waiting_);
      itemCame_.notify_all();
      becameIdle_.notify_all();
    }
    return static_cast<std::size_t>(count);
  }

  // Waits for the thread to end after Stop. Does nothing on the queue's own thread, which the
  // destructor sees to.
  void Join() {
    if (IsOwnThread()) return;
    std::thread thread;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      thread.swap(thread_);
    }
    if (thread.joinable()) thread.join();
  }

  bool IsOwnThread() const { return serialQueueOfThisThread == this; }

 private:
  struct Entry {
    Item item;
    std::int64_t bytes;
    bool isCounted;
  };

  static constexpr std::size_t kBatchSize = 64;
  static constexpr std::int64_t kNothingLeft = std::numeric_limits<std::int64_t>::min() / 2;

  void Run(Handlers& handlers) {
    if (handlers.begin) handlers.begin();
    std::vector<Entry> batch;
    batch.reserve(kBatchSize);
    while (TakeBatch(batch, handlers)) {
      for (Entry& entry : batch) {
        if (!Claim(entry)) break;
        handlers.handle(std::move(entry.item));
      }
      batch.clear();
    }
    {
      std::unique_lock<std::mutex> lock(mutex_);
      ReportRefused(lock, handlers);
    }
    if (handlers.end) handlers.end();
  }

  bool HasRoom(const QueueRoom& room) const {
    return unclaimed_.load() < static_cast<std::int64_t>(room.items) &&
           unclaimedBytes_.load() < static_cast<std::int64_t>(room.bytes);
  }

  // An item is either claimed here or counted as dropped by Stop, never both.
  bool Claim(const Entry& entry) {
    if (!entry.isCounted) return !isStopped_.load();
    unclaimedBytes_.fetch_sub(entry.bytes);
    return unclaimed_.fetch_sub(1) > 0;
  }

  bool TakeBatch(std::vector<Entry>& batch, const Handlers& handlers) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (HasRoom(capacity_)) ReportRefused(lock, handlers);
    while (waiting_.empty() && !isStopped_) {
      isBusy_ = false;
      isSleeping_ = true;
      becameIdle_.notify_all();
      itemCame_.wait(lock, [this] { return !isSleeping_ || isStopped_; });
    }
    isBusy_ = true;
    const std::size_t count = std::min(waiting_.size(), kBatchSize);
    for (std::size_t taken = 0; taken < count; ++taken) {
      batch.push_back(std::move(waiting_.front()));
      waiting_.pop_front();
    }
    return !isStopped_;
  }

  void ReportRefused(std::unique_lock<std::mutex>& lock, const Handlers& handlers) {
    if (refused_ == 0) return;
    const std::size_t count = std::exchange(refused_, 0);
    lock.unlock();
    if (handlers.reportOverflow) handlers.reportOverflow(count);
    lock.lock();
  }

  const QueueRoom capacity_;
  const QueueRoom largest_;  // for Reserved items
  const std::shared_ptr<std::atomic<bool>> isDone_ = std::make_shared<std::atomic<bool>>(false);
  std::atomic<std::int64_t> unclaimed_{0};  // accepted and not begun; far below zero once stopped
  std::atomic<std::int64_t> unclaimedBytes_{0};
  std::atomic<std::int64_t> accepted_{0};
  std::atomic<bool> isStopped_{false};

  std::mutex mutex_;
  std::condition_variable itemCame_;
  std::condition_variable becameIdle_;
  std::deque<Entry> waiting_;
  std::size_t refused_ = 0;
  bool isStarted_ = false;
  bool isBusy_ = false;
  bool isSleeping_ = false;
  std::thread thread_;
};

}  // namespace Velmora
