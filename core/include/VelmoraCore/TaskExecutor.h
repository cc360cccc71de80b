#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"
#include "VelmoraCore/TaskExecutorInterface.h"

namespace Velmora {

// The core's executor: a fixed number of threads over one queue. A task that throws is logged at
// error level and the next one runs.
class VELMORA_CORE_API TaskExecutor : public Object, public virtual TaskExecutorInterface {
 public:
  // Starts `threadCount` threads (at least one). Each gives itself `name` through
  // `systemInfoService`, when there is one. Throws std::system_error when a thread cannot be had.
  TaskExecutor(std::size_t threadCount, std::string name,
               std::shared_ptr<SystemInfoServiceInterface> systemInfoService = nullptr);

  // As Dispose with no time to wait, and joins. When the last owner is one of its own tasks, that
  // task still returns to its thread, which ends by itself.
  ~TaskExecutor() override;

  TaskExecutor(const TaskExecutor&) = delete;
  TaskExecutor& operator=(const TaskExecutor&) = delete;

  bool Execute(std::function<void()> task) override;
  bool Dispose(std::chrono::milliseconds timeout) override;

 private:
  class Worker;

  std::shared_ptr<Worker> worker_;
};

}  // namespace Velmora
