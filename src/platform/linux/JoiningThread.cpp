#include "platform/linux/JoiningThread.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

namespace Platform {
namespace {

struct Leftover {
  std::thread thread;
  std::shared_ptr<std::atomic<bool>> isDone;
};

struct Keeper {
  std::mutex mutex;
  std::vector<Leftover> leftovers;
};

// Never destroyed: a thread that still runs when the process ends must not be found by a
// destructor.
Keeper& TheKeeper() {
  static auto* keeper = new Keeper;
  return *keeper;
}

}  // namespace

JoiningThread::JoiningThread(std::function<void()> work)
    : isDone_(std::make_shared<std::atomic<bool>>(false)) {
  // The work and what it holds go before the thread counts as done.
  thread_ = std::thread([isDone = isDone_, run = std::move(work)]() mutable {
    run();
    run = nullptr;
    *isDone = true;
  });
}

JoiningThread::~JoiningThread() { End(); }

JoiningThread& JoiningThread::operator=(JoiningThread&& other) noexcept {
  if (this != &other) {
    End();
    thread_ = std::move(other.thread_);
    isDone_ = std::move(other.isDone_);
  }
  return *this;
}

bool JoiningThread::JoinThoseDone() {
  std::vector<Leftover> done;
  bool isNoneLeft = false;
  {
    Keeper& keeper = TheKeeper();
    const std::lock_guard lock(keeper.mutex);
    auto& all = keeper.leftovers;
    const auto firstDone = std::partition(
        all.begin(), all.end(), [](const Leftover& each) { return !each.isDone->load(); });
    std::move(firstDone, all.end(), std::back_inserter(done));
    all.erase(firstDone, all.end());
    isNoneLeft = all.empty();
  }
  for (Leftover& each : done) each.thread.join();
  return isNoneLeft;
}

void JoiningThread::End() {
  if (!thread_.joinable()) return;
  if (thread_.get_id() != std::this_thread::get_id()) {
    thread_.join();
    return;
  }
  Keeper& keeper = TheKeeper();
  const std::lock_guard lock(keeper.mutex);
  keeper.leftovers.push_back({std::move(thread_), std::move(isDone_)});
}

}  // namespace Platform
