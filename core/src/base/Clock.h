#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace Velmora {

// The time of day, and calls at a later time. May be used on any thread.
class Clock {
 public:
  using TimePoint = std::chrono::system_clock::time_point;
  using Action = std::function<void()>;

  // Names one call that is waited for; no two of a clock's are equal.
  using Ticket = std::uint64_t;

  virtual ~Clock() = default;

  virtual TimePoint Now() const = 0;

  // Calls `action` once, when `wait` has passed: at once when it is not above zero. Changes of the
  // time of day make no difference. The call comes on a thread of the clock's, which it must not
  // keep: an action hands its work over. Does nothing after Stop. Throws std::system_error when no
  // thread can be had.
  virtual Ticket CallAfter(std::chrono::milliseconds wait, Action action) = 0;

  // The call is not made any more, unless it is under way already.
  virtual void Cancel(Ticket ticket) = 0;

  // Forgets every call, and waits for the one that is under way, if this is not it.
  virtual void Stop() = 0;
};

}  // namespace Velmora
