#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/SystemLog.h"

namespace Platform {

class MainQueueCore;

// The main queue of a program that may or may not run GLib's default context.
//
// Nothing exists until the first work: then a thread named "QEXMainQueue" starts, and asks the
// context to say that it is being run. As soon as it does, all work is done there, on the
// application's own main thread; until then, and in a program without such a loop, the thread does
// it. It is the one or the other at any time, never both; once the context has run, the thread does
// no work any more, also when the application's loop ends. The context itself is never run or owned
// by the thread.
//
// The first work waits up to a grace time for the application's loop. The thread is joined when the
// queue goes, or when the process ends; a forked copy of the process has no main queue.
class GlibMainQueue final : public MainQueue {
 public:
  // Follows GLib's default context, with a quarter of a second of grace.
  explicit GlibMainQueue(std::shared_ptr<SystemLog> systemLog);

  // One that follows GLib's default context alone: work waits until that is run.
  static std::shared_ptr<GlibMainQueue> OnLoopOnly(std::shared_ptr<SystemLog> systemLog);

  // Follows the context of `core`, which no other queue may use.
  explicit GlibMainQueue(std::shared_ptr<MainQueueCore> core);

  // Waits for the work that is under way, unless that work is what destroys the queue.
  ~GlibMainQueue() override;

  void Async(std::function<void()> work) override;
  std::unique_ptr<MainQueueTimer> Repeat(std::chrono::milliseconds interval,
                                         std::function<void()> tick) override;

 private:
  class Timer;

  const std::shared_ptr<MainQueueCore> core_;  // sources and timers may outlive this
};

}  // namespace Platform
