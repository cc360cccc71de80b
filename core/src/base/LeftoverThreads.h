#pragma once

#include <atomic>
#include <memory>
#include <thread>

namespace Velmora {

// A thread, and whether its work is done, which the thread itself tells.
struct FlaggedThread {
  std::thread thread;
  std::shared_ptr<std::atomic<bool>> isDone;
};

// Keeps threads that could not be joined by their owner because the owner was destroyed on the very
// thread. They are joined later, when another executor comes or goes. May be used on any thread.
class LeftoverThreads {
 public:
  LeftoverThreads() = delete;

  static void Adopt(FlaggedThread thread);

  // Joins those that are done; does not wait for the others. True when none is left.
  static bool JoinThoseDone();
};

}  // namespace Velmora
