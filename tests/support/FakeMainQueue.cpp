#include "support/FakeMainQueue.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace TestSupport {

struct FakeMainQueue::Tick {
  std::function<void()> work;
  std::chrono::milliseconds interval;
  std::chrono::milliseconds due;
};

class FakeMainQueue::Timer final : public Platform::MainQueueTimer {
 public:
  Timer(std::shared_ptr<Guarded<Ticks>> ticks, std::shared_ptr<Tick> tick)
      : ticks_(std::move(ticks)), tick_(std::move(tick)) {}
  ~Timer() override {
    ticks_->With([this](Ticks& ticks) { std::erase(ticks, tick_); });
  }
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

 private:
  const std::shared_ptr<Guarded<Ticks>> ticks_;
  const std::shared_ptr<Tick> tick_;
};

FakeMainQueue::FakeMainQueue(std::shared_ptr<Platform::SystemLog> systemLog)
    : systemLog_(std::move(systemLog)), ticks_(std::make_shared<Guarded<Ticks>>()) {}

FakeMainQueue::~FakeMainQueue() = default;

void FakeMainQueue::RunAll() {
  const auto next = [this] {
    return waiting_.With([](auto& waiting) -> std::optional<std::function<void()>> {
      if (waiting.empty()) return std::nullopt;
      auto work = std::move(waiting.front());
      waiting.pop_front();
      return work;
    });
  };
  while (const auto work = next()) Run(*work);
}

void FakeMainQueue::Advance(std::chrono::milliseconds time) {
  const auto end = now_ + time;
  RunAll();
  while (true) {
    const auto tick = ticks_->With([](Ticks& ticks) -> std::shared_ptr<Tick> {
      const auto first = std::min_element(
          ticks.begin(), ticks.end(), [](auto& one, auto& other) { return one->due < other->due; });
      return first == ticks.end() ? nullptr : *first;
    });
    if (!tick || tick->due > end) break;
    now_ = std::max(now_, tick->due);
    tick->due += tick->interval;
    Run(tick->work);
    RunAll();
  }
  now_ = end;
}

std::size_t FakeMainQueue::WaitingCount() const {
  return waiting_.With([](const auto& waiting) { return waiting.size(); });
}

std::size_t FakeMainQueue::TimerCount() const {
  return ticks_->With([](const Ticks& ticks) { return ticks.size(); });
}

void FakeMainQueue::Async(std::function<void()> work) {
  if (!work) return;
  waiting_.With([&](auto& waiting) { waiting.push_back(std::move(work)); });
}

std::unique_ptr<Platform::MainQueueTimer> FakeMainQueue::Repeat(std::chrono::milliseconds interval,
                                                                std::function<void()> tick) {
  auto shared = std::make_shared<Tick>(Tick{std::move(tick), interval, now_ + interval});
  ticks_->With([&](Ticks& ticks) { ticks.push_back(shared); });
  return std::make_unique<Timer>(ticks_, std::move(shared));
}

void FakeMainQueue::Run(const std::function<void()>& work) const {
  try {
    work();
  } catch (const std::exception& error) {
    systemLog_->Write(std::string("Work on the main queue threw: ") + error.what());
  } catch (...) {
    systemLog_->Write("Work on the main queue threw something that is no exception.");
  }
}

}  // namespace TestSupport
