#pragma once

#include <chrono>
#include <functional>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Runs tasks on threads of its own, starting them in the order in which they were given. May be
// called on any thread, also from a task.
class VELMORA_CORE_API TaskExecutorInterface : public virtual ObjectInterface {
 public:
  ~TaskExecutorInterface() override;

  // Queues `task` and returns true. False, and the task never runs, after Dispose or when the task
  // is empty.
  virtual bool Execute(std::function<void()> task) = 0;

  // Takes no more tasks, waits up to `timeout` for those taken, drops those that have not started
  // by then and waits for running ones to return. True when none was dropped. Later calls give the
  // same result. Called from a task, it drops what is queued, waits for nothing and returns false.
  virtual bool Dispose(std::chrono::milliseconds timeout) = 0;
};

}  // namespace Velmora
