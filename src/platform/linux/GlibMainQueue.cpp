#include "platform/linux/GlibMainQueue.h"

#include <utility>

#include <glib.h>

#include "platform/linux/MainQueueCore.h"

namespace Platform {
namespace {

constexpr std::chrono::milliseconds kGrace{250};

}  // namespace

class GlibMainQueue::Timer final : public MainQueueTimer {
 public:
  Timer(std::shared_ptr<MainQueueCore> core, std::shared_ptr<MainQueueCore::Tick> tick)
      : core_(std::move(core)), tick_(std::move(tick)) {}
  ~Timer() override { core_->Cancel(tick_); }
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

 private:
  const std::shared_ptr<MainQueueCore> core_;
  const std::shared_ptr<MainQueueCore::Tick> tick_;
};

GlibMainQueue::GlibMainQueue(std::shared_ptr<SystemLog> systemLog)
    : GlibMainQueue(std::make_shared<MainQueueCore>(std::move(systemLog), nullptr, kGrace)) {}

std::shared_ptr<GlibMainQueue> GlibMainQueue::OnLoopOnly(std::shared_ptr<SystemLog> systemLog) {
  return std::make_shared<GlibMainQueue>(
      std::make_shared<MainQueueCore>(std::move(systemLog), nullptr, MainQueueCore::kNoEndOfGrace));
}

GlibMainQueue::GlibMainQueue(std::shared_ptr<MainQueueCore> core) : core_(std::move(core)) {}

GlibMainQueue::~GlibMainQueue() { core_->Stop(); }

void GlibMainQueue::Async(std::function<void()> work) { core_->Add(std::move(work)); }

std::unique_ptr<MainQueueTimer> GlibMainQueue::Repeat(std::chrono::milliseconds interval,
                                                      std::function<void()> tick) {
  return std::make_unique<Timer>(core_, core_->AddTick(interval, std::move(tick)));
}

}  // namespace Platform
