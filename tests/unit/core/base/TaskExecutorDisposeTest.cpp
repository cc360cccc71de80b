#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "VelmoraCore/TaskExecutor.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"

namespace Velmora {
namespace {

using std::chrono::milliseconds;
using TestSupport::kDefaultDeadline;
using TestSupport::LogCapture;
using TestSupport::WaitUntil;

// A task that runs from Started() until Release().
class Blocker {
 public:
  std::function<void()> Task() {
    return [this] {
      hasStarted_ = true;
      WaitUntil([this] { return isReleased_.load(); });
      hasEnded_ = true;
    };
  }
  bool Started() const {
    return WaitUntil([this] { return hasStarted_.load(); });
  }
  void Release() { isReleased_ = true; }
  bool HasEnded() const { return hasEnded_; }

 private:
  std::atomic<bool> hasStarted_{false};
  std::atomic<bool> isReleased_{false};
  std::atomic<bool> hasEnded_{false};
};

// A task that never runs when things go right; tells when the executor has let go of it.
class DroppedTask {
 public:
  std::function<void()> Task() {
    return [this, token = std::move(token_)] { hasRun_ = *token; };
  }
  bool WasDropped() const {
    return WaitUntil([this] { return watch_.expired(); }) && !hasRun_;
  }

 private:
  std::shared_ptr<bool> token_ = std::make_shared<bool>(true);
  std::weak_ptr<bool> watch_ = token_;
  std::atomic<bool> hasRun_{false};
};

TEST(TaskExecutorDispose, WaitsForQueuedAndRunningTasks) {
  const LogCapture log;
  Blocker running;
  std::atomic<bool> queuedRan{false};
  TaskExecutor executor(1, "patient");
  executor.Execute(running.Task());
  executor.Execute([&queuedRan] { queuedRan = true; });
  ASSERT_TRUE(running.Started());

  auto result = std::async(std::launch::async, [&] { return executor.Dispose(kDefaultDeadline); });
  ASSERT_TRUE(WaitUntil([&executor] { return !executor.Execute([] {}); }));
  running.Release();

  EXPECT_TRUE(result.get());
  EXPECT_TRUE(queuedRan);
}

TEST(TaskExecutorDispose, TakesNoMoreTasks) {
  const LogCapture log;
  TaskExecutor executor(1, "closed");
  EXPECT_TRUE(executor.Dispose(milliseconds(0)));

  std::atomic<bool> ran{false};
  EXPECT_FALSE(executor.Execute([&ran] { ran = true; }));
  EXPECT_FALSE(ran);
}

TEST(TaskExecutorDispose, DropsWhatIsQueuedWhenTheTimeIsUpAndWaitsForWhatRuns) {
  const LogCapture log;
  Blocker running;
  DroppedTask queued;
  TaskExecutor executor(1, "strict");
  executor.Execute(running.Task());
  executor.Execute(queued.Task());
  ASSERT_TRUE(running.Started());

  auto result = std::async(std::launch::async, [&] {
    const bool allRan = executor.Dispose(milliseconds(1));
    EXPECT_TRUE(running.HasEnded());
    return allRan;
  });
  EXPECT_TRUE(queued.WasDropped());
  running.Release();

  EXPECT_FALSE(result.get());
}

TEST(TaskExecutorDispose, CountsATaskThatOutlastsTheTimeAsDone) {
  const LogCapture log;
  Blocker running;
  TaskExecutor executor(1, "late");
  executor.Execute(running.Task());
  ASSERT_TRUE(running.Started());

  auto result = std::async(std::launch::async, [&] { return executor.Dispose(milliseconds(0)); });
  running.Release();

  EXPECT_TRUE(result.get());
  EXPECT_TRUE(running.HasEnded());
}

TEST(TaskExecutorDispose, GivesTheSameResultAgain) {
  const LogCapture log;
  TaskExecutor quiet(1, "quiet");
  EXPECT_TRUE(quiet.Dispose(kDefaultDeadline));
  EXPECT_TRUE(quiet.Dispose(milliseconds(0)));

  Blocker running;
  DroppedTask queued;
  TaskExecutor busy(1, "busy");
  busy.Execute(running.Task());
  busy.Execute(queued.Task());
  ASSERT_TRUE(running.Started());
  auto first = std::async(std::launch::async, [&] { return busy.Dispose(milliseconds(0)); });
  EXPECT_TRUE(queued.WasDropped());
  auto second = std::async(std::launch::async, [&] { return busy.Dispose(kDefaultDeadline); });
  running.Release();

  EXPECT_FALSE(first.get());
  EXPECT_FALSE(second.get());
  EXPECT_FALSE(busy.Dispose(kDefaultDeadline));
}

TEST(TaskExecutorDispose, TakesNegativeAndEndlessTimes) {
  const LogCapture log;
  TaskExecutor negative(1, "negative");
  EXPECT_TRUE(negative.Dispose(milliseconds(-1)));

  std::atomic<int> ran{0};
  TaskExecutor endless(2, "endless");
  for (int task = 0; task < 50; ++task) {
    endless.Execute([&ran] { ++ran; });
  }
  EXPECT_TRUE(endless.Dispose(milliseconds::max()));
  EXPECT_EQ(ran, 50);

  TaskExecutor lowest(1, "lowest");
  EXPECT_TRUE(lowest.Dispose(milliseconds::min()));
}

TEST(TaskExecutorDispose, FromATaskReturnsFalseAtOnceAndDropsWhatIsQueued) {
  const LogCapture log;
  DroppedTask queued;
  std::promise<bool> result;
  {
    TaskExecutor executor(1, "self");
    executor.Execute([&] {
      // Queued from here, so that it is there for certain.
      executor.Execute(queued.Task());
      result.set_value(executor.Dispose(milliseconds::max()));
    });
    auto future = result.get_future();
    ASSERT_EQ(future.wait_for(kDefaultDeadline), std::future_status::ready);
    EXPECT_FALSE(future.get());
    EXPECT_FALSE(executor.Execute([] {}));
    EXPECT_FALSE(executor.Dispose(kDefaultDeadline));
  }
  EXPECT_TRUE(queued.WasDropped());
}

TEST(TaskExecutorDispose, FromATaskDoesNotDisturbTheOneUnderWay) {
  const LogCapture log;
  Blocker running;
  std::atomic<bool> queuedRan{false};
  std::atomic<bool> inner{true};
  TaskExecutor executor(1, "both");
  executor.Execute([&] {
    running.Task()();
    inner = executor.Dispose(milliseconds(0));
  });
  executor.Execute([&queuedRan] { queuedRan = true; });
  ASSERT_TRUE(running.Started());

  auto outer = std::async(std::launch::async, [&] { return executor.Dispose(kDefaultDeadline); });
  ASSERT_TRUE(WaitUntil([&executor] { return !executor.Execute([] {}); }));
  running.Release();

  EXPECT_TRUE(outer.get());
  EXPECT_FALSE(inner);
  EXPECT_TRUE(queuedRan);
}

TEST(TaskExecutorDispose, HappensInTheDestructorWithoutWaitingForQueuedTasks) {
  const LogCapture log;
  Blocker running;
  DroppedTask queued;
  auto executor = std::make_unique<TaskExecutor>(1, "brief");
  executor->Execute(running.Task());
  executor->Execute(queued.Task());
  ASSERT_TRUE(running.Started());

  auto destroyed = std::async(std::launch::async, [&] {
    executor.reset();
    return running.HasEnded();
  });
  EXPECT_TRUE(queued.WasDropped());
  running.Release();

  EXPECT_TRUE(destroyed.get());
}

TEST(TaskExecutorDispose, LetsATaskBeTheLastOwner) {
  const LogCapture log;
  std::atomic<bool> wentOn{false};
  Blocker running;
  auto executor = std::make_shared<TaskExecutor>(2, "orphan");
  const std::weak_ptr<TaskExecutor> watched = executor;
  TaskExecutor& direct = *executor;
  direct.Execute([&, owner = std::move(executor)]() mutable {
    running.Task()();
    owner.reset();
    wentOn = true;
  });
  ASSERT_TRUE(running.Started());
  running.Release();

  EXPECT_TRUE(WaitUntil([&wentOn] { return wentOn.load(); }));
  EXPECT_TRUE(watched.expired());
  // The thread that had to be left is joined by an executor that comes later.
  EXPECT_TRUE(TaskExecutor(1, "next").Dispose(kDefaultDeadline));
}

TEST(TaskExecutorDispose, IsSafeFromManyThreads) {
  const LogCapture log;
  for (int round = 0; round < 50; ++round) {
    std::atomic<int> ran{0};
    TaskExecutor executor(2, "crowd");
    for (int task = 0; task < 20; ++task) {
      executor.Execute([&ran] { ++ran; });
    }
    auto first = std::async(std::launch::async, [&] { return executor.Dispose(kDefaultDeadline); });
    auto second =
        std::async(std::launch::async, [&] { return executor.Dispose(kDefaultDeadline); });
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
    EXPECT_EQ(ran, 20);
  }
}

TEST(TaskExecutorDispose, ReleasesDroppedTasksWithoutItsLock) {
  const LogCapture log;
  TaskExecutor executor(1, "reentrant");
  Blocker running;
  std::atomic<bool> taken{true};
  // What the dropped task holds calls the executor when it goes.
  std::shared_ptr<int> caller(new int(0), [&](int* value) {
    taken = executor.Execute([] {});
    delete value;
  });
  executor.Execute(running.Task());
  executor.Execute([caller = std::move(caller)] { static_cast<void>(*caller); });
  ASSERT_TRUE(running.Started());

  auto result = std::async(std::launch::async, [&] { return executor.Dispose(milliseconds(0)); });
  EXPECT_TRUE(WaitUntil([&taken] { return !taken; }));
  running.Release();

  EXPECT_FALSE(result.get());
}

}  // namespace
}  // namespace Velmora
