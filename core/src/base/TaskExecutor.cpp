#include "VelmoraCore/TaskExecutor.h"

#include <utility>

#include "base/LeftoverThreads.h"
#include "base/TaskExecutorWorker.h"

namespace Velmora {

TaskExecutor::TaskExecutor(std::size_t threadCount, std::string name,
                           std::shared_ptr<SystemInfoServiceInterface> systemInfoService)
    : worker_(std::make_shared<Worker>(std::move(name), std::move(systemInfoService))) {
  LeftoverThreads::JoinThoseDone();
  worker_->Start(threadCount);
}

TaskExecutor::~TaskExecutor() {
  worker_->Shutdown();
  LeftoverThreads::JoinThoseDone();
}

bool TaskExecutor::Execute(std::function<void()> task) { return worker_->Execute(std::move(task)); }

bool TaskExecutor::Dispose(std::chrono::milliseconds timeout) { return worker_->Dispose(timeout); }

}  // namespace Velmora
