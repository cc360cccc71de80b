#pragma once

#include <memory>

#include "base/Clock.h"
#include "base/LeftoverThreads.h"

namespace Velmora {

// The system's clock. Waits on a thread of its own, which starts with the first call to wait for
// and is joined by Stop or the destructor; where that runs on the thread itself, by
// LeftoverThreads. An action that throws gives one error line.
class SystemClock final : public Clock {
 public:
  // `onThreadBegin` is called first on the thread; it may be empty.
  explicit SystemClock(Action onThreadBegin);
  ~SystemClock() override;
  SystemClock(const SystemClock&) = delete;
  SystemClock& operator=(const SystemClock&) = delete;

  TimePoint Now() const override;
  Ticket CallAfter(std::chrono::milliseconds wait, Action action) override;
  void Cancel(Ticket ticket) override;
  void Stop() override;

 private:
  struct State;

  static void Run(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> state_;  // the thread's too
  FlaggedThread thread_;                // guarded by the state's lock
};

}  // namespace Velmora
