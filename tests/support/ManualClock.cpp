#include "support/ManualClock.h"

#include <algorithm>

namespace TestSupport {

using std::chrono::milliseconds;

void ManualClock::Advance(milliseconds time) {
  std::unique_lock lock(mutex_);
  const milliseconds end = passed_ + time;
  while (!waiting_.empty() && waiting_.begin()->first.first <= end) {
    const auto next = waiting_.extract(waiting_.begin());
    const milliseconds step = std::max(next.key().first - passed_, milliseconds::zero());
    passed_ += step;
    now_ += step;
    lock.unlock();
    next.mapped()();
    lock.lock();
  }
  now_ += end - passed_;
  passed_ = end;
}

void ManualClock::SetTimeOfDay(TimePoint now) {
  const std::lock_guard lock(mutex_);
  now_ = now;
}

std::vector<milliseconds> ManualClock::Waits() const {
  const std::lock_guard lock(mutex_);
  std::vector<milliseconds> waits;
  for (const auto& [key, action] : waiting_) waits.push_back(key.first - passed_);
  return waits;
}

Velmora::Clock::TimePoint ManualClock::Now() const {
  const std::lock_guard lock(mutex_);
  return now_;
}

Velmora::Clock::Ticket ManualClock::CallAfter(milliseconds wait, Action action) {
  const std::lock_guard lock(mutex_);
  const Ticket ticket = ++lastTicket_;
  waiting_.emplace(Key{passed_ + wait, ticket}, std::move(action));
  return ticket;
}

void ManualClock::Cancel(Ticket ticket) {
  const std::lock_guard lock(mutex_);
  std::erase_if(waiting_, [ticket](const auto& entry) { return entry.first.second == ticket; });
}

void ManualClock::Stop() {
  const std::lock_guard lock(mutex_);
  waiting_.clear();
}

}  // namespace TestSupport
