#include "base/LeftoverThreads.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

namespace Velmora {
namespace {

// Never destroyed: a thread that is still running when the process ends must not be found by a
// destructor.
struct Keeper {
  static Keeper& Instance() {
    static Keeper& instance = *new Keeper;
    return instance;
  }

  std::mutex mutex;
  std::vector<FlaggedThread> threads;
};

std::vector<FlaggedThread> TakeThoseDone() {
  Keeper& keeper = Keeper::Instance();
  const std::lock_guard<std::mutex> lock(keeper.mutex);
  const auto firstDone =
      std::partition(keeper.threads.begin(), keeper.threads.end(),
                     [](const FlaggedThread& candidate) { return !candidate.isDone->load(); });
  std::vector<FlaggedThread> done(std::make_move_iterator(firstDone),
                                  std::make_move_iterator(keeper.threads.end()));
  keeper.threads.erase(firstDone, keeper.threads.end());
  return done;
}

}  // namespace

void LeftoverThreads::Adopt(FlaggedThread thread) {
  Keeper& keeper = Keeper::Instance();
  const std::lock_guard<std::mutex> lock(keeper.mutex);
  keeper.threads.push_back(std::move(thread));
}

bool LeftoverThreads::JoinThoseDone() {
  for (FlaggedThread& done : TakeThoseDone()) {
    done.thread.join();
  }
  Keeper& keeper = Keeper::Instance();
  const std::lock_guard<std::mutex> lock(keeper.mutex);
  return keeper.threads.empty();
}

}  // namespace Velmora
