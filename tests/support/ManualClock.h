#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "base/Clock.h"

namespace TestSupport {

// A clock that stands still until the test sets it. What is due is called on the thread that moves
// the clock. Safe from any thread. Stop forgets what waits, so that one clock serves a core and the
// next.
class ManualClock final : public Velmora::Clock {
 public:
  // 2026-03-05 10:20:30 UTC.
  static constexpr TimePoint kStart{std::chrono::seconds(1'772'706'030)};

  // Lets time pass, and calls what falls due on the way, each at its time.
  void Advance(std::chrono::milliseconds time);

  // Changes the time of day only, as somebody does who sets it: nothing falls due.
  void SetTimeOfDay(TimePoint now);

  // How long each call is yet to be waited for, the next one first.
  std::vector<std::chrono::milliseconds> Waits() const;

  TimePoint Now() const override;
  Ticket CallAfter(std::chrono::milliseconds wait, Action action) override;
  void Cancel(Ticket ticket) override;
  void Stop() override;

 private:
  // Passed since the clock was made, and the ticket.
  using Key = std::pair<std::chrono::milliseconds, Ticket>;

  mutable std::mutex mutex_;
  TimePoint now_ = kStart;
  std::chrono::milliseconds passed_{0};
  std::map<Key, Action> waiting_;
  Ticket lastTicket_ = 0;
};

}  // namespace TestSupport
