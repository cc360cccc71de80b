#include "hub/ResponseWaiters.h"

#include <algorithm>
#include <utility>

#include "VelmoraCore/Log.h"

namespace Velmora {

ResponseWaiters::ResponseWaiters(std::size_t capacity) : capacity_(capacity) {}

std::int64_t ResponseWaiters::Add(const std::string& requestId, Callback callback) {
  Callback forgotten;
  bool mustWarn = false;
  std::int64_t ticket = 0;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (waiters_.size() >= capacity_ && !waiters_.empty()) {
      forgotten = Extract(waiters_.begin());
      mustWarn = !std::exchange(hasWarned_, true);
    }
    ticket = ++lastTicket_;
    waiters_.emplace_hint(waiters_.end(), ticket, Waiter{requestId, std::move(callback)});
    tickets_.emplace(requestId, ticket);
  }
  if (mustWarn) {
    Log::Warning("EventHub",
                 "more than %zu requests wait for an answer; the oldest ones are forgotten",
                 capacity_);
  }
  return ticket;
}

void ResponseWaiters::Remove(std::int64_t ticket) {
  Callback removed;
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto waiter = waiters_.find(ticket);
  if (waiter != waiters_.end()) removed = Extract(waiter);
}

std::vector<ResponseWaiters::Callback> ResponseWaiters::Take(const std::string& requestId) {
  std::vector<Callback> callbacks;
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<std::int64_t> found;
  const auto [first, last] = tickets_.equal_range(requestId);
  std::for_each(first, last, [&found](const auto& entry) { found.push_back(entry.second); });
  std::sort(found.begin(), found.end());
  callbacks.reserve(found.size());
  for (const std::int64_t ticket : found) callbacks.push_back(Extract(waiters_.find(ticket)));
  return callbacks;
}

void ResponseWaiters::Clear() {
  Waiters cleared;
  const std::lock_guard<std::mutex> lock(mutex_);
  cleared.swap(waiters_);
  tickets_.clear();
}

std::size_t ResponseWaiters::Count() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return waiters_.size();
}

ResponseWaiters::Callback ResponseWaiters::Extract(Waiters::iterator waiter) {
  const auto [first, last] = tickets_.equal_range(waiter->second.requestId);
  tickets_.erase(
      std::find_if(first, last, [&](const auto& entry) { return entry.second == waiter->first; }));
  Callback callback = std::move(waiter->second.callback);
  waiters_.erase(waiter);
  return callback;
}

}  // namespace Velmora
