#include "base/SystemClock.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"

namespace Velmora {
namespace {

using SteadyClock = std::chrono::steady_clock;

SteadyClock::time_point TimeAfter(std::chrono::milliseconds wait) {
  // Longer waits could not be told apart, and would overflow the clock.
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365);
  return SteadyClock::now() + std::clamp(wait, std::chrono::milliseconds::zero(), kLongest);
}

void CallGuarded(const Clock::Action& action) {
  TryCatch(action, [](SdkError& error) {
    Log::Error("Clock", "what was to happen at its time failed: %s", error.what());
  });
}

}  // namespace

struct SystemClock::State {
  struct Entry {
    Ticket ticket;
    Action action;
  };

  explicit State(Action threadBegin) : onThreadBegin(std::move(threadBegin)) {}

  const Action onThreadBegin;
  std::mutex mutex;
  std::condition_variable changed;
  std::multimap<SteadyClock::time_point, Entry> waiting;  // those of one time in their order
  Ticket lastTicket = 0;
  bool isStopped = false;
};

SystemClock::SystemClock(Action onThreadBegin)
    : state_(std::make_shared<State>(std::move(onThreadBegin))) {}

SystemClock::~SystemClock() {
  Stop();
  if (thread_.thread.joinable()) LeftoverThreads::Adopt(std::move(thread_));
}

Clock::TimePoint SystemClock::Now() const { return std::chrono::system_clock::now(); }

Clock::Ticket SystemClock::CallAfter(std::chrono::milliseconds wait, Action action) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  const Ticket ticket = ++state_->lastTicket;
  if (state_->isStopped) return ticket;
  if (!thread_.thread.joinable()) {
    auto isDone = std::make_shared<std::atomic<bool>>(false);
    std::thread thread([state = state_, isDone]() mutable {
      Run(state);
      state = nullptr;
      isDone->store(true);
    });
    thread_ = {std::move(thread), std::move(isDone)};
  }
  state_->waiting.emplace(TimeAfter(wait), State::Entry{ticket, std::move(action)});
  state_->changed.notify_one();
  return ticket;
}

void SystemClock::Cancel(Ticket ticket) {
  Action cancelled;  // goes without the lock
  const std::lock_guard<std::mutex> lock(state_->mutex);
  const auto found =
      std::find_if(state_->waiting.begin(), state_->waiting.end(),
                   [ticket](const auto& entry) { return entry.second.ticket == ticket; });
  if (found == state_->waiting.end()) return;
  cancelled = std::move(found->second.action);
  state_->waiting.erase(found);
}

void SystemClock::Stop() {
  decltype(State::waiting) forgotten;  // go without the lock
  std::thread thread;
  {
    const std::lock_guard<std::mutex> lock(state_->mutex);
    state_->isStopped = true;
    forgotten.swap(state_->waiting);
    if (thread_.thread.get_id() != std::this_thread::get_id()) thread.swap(thread_.thread);
  }
  state_->changed.notify_one();
  if (thread.joinable()) thread.join();
}

void SystemClock::Run(const std::shared_ptr<State>& state) {
  if (state->onThreadBegin) CallGuarded(state->onThreadBegin);
  std::unique_lock<std::mutex> lock(state->mutex);
  while (!state->isStopped) {
    if (state->waiting.empty()) {
      state->changed.wait(lock);
      continue;
    }
    const auto next = state->waiting.begin();
    if (next->first > SteadyClock::now()) {
      // By value: the entry may be cancelled meanwhile.
      const SteadyClock::time_point time = next->first;
      state->changed.wait_until(lock, time);
      continue;
    }
    Action action = std::move(next->second.action);
    state->waiting.erase(next);
    lock.unlock();
    CallGuarded(action);
    action = nullptr;
    lock.lock();
  }
}

}  // namespace Velmora
