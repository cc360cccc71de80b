#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// A repeating timer of the main queue. Runs from when it was made until it goes; it may go on any
// thread, and from within its own tick. A tick that has begun by then still ends.
class QEXCORE_API MainQueueTimer {
 public:
  virtual ~MainQueueTimer();
};

// The queue on which everything that concerns the screen is done, one piece after the other. Safe
// from any thread.
//
// What leaves a piece of work as an exception is caught, with one line on the system log. Work that
// has not begun when the queue goes is dropped.
class QEXCORE_API MainQueue {
 public:
  virtual ~MainQueue();

  // Runs `work` after everything that was handed over before it, never within this call. Work that
  // the device cannot take is dropped, with one line on the system log.
  virtual void Async(std::function<void()> work) = 0;

  // Runs `tick` every `interval`, the first time when one interval has passed. Ticks that could not
  // run in time are run once, not once each. Never null.
  virtual std::unique_ptr<MainQueueTimer> Repeat(std::chrono::milliseconds interval,
                                                 std::function<void()> tick) = 0;
};

}  // namespace Platform
