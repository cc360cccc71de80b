#include <atomic>
#include <future>
#include <memory>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/TaskExecutor.h"
#include "support/Guarded.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"
#include "unit/core/base/FakeSystemInfoService.h"

namespace Velmora {
namespace {

using testing::ElementsAre;
using TestSupport::Guarded;
using TestSupport::kDefaultDeadline;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;

TEST(TaskExecutor, RunsTasksInOrderOnOneThreadOfItsOwn) {
  const LogCapture log;
  Guarded<std::vector<int>> order;
  Guarded<std::set<std::thread::id>> threads;
  TaskExecutor executor(1, "orderly");

  for (int task = 0; task < 100; ++task) {
    EXPECT_TRUE(executor.Execute([&order, &threads, task] {
      order.With([task](std::vector<int>& tasks) { tasks.push_back(task); });
      threads.With([](std::set<std::thread::id>& ids) { ids.insert(std::this_thread::get_id()); });
    }));
  }
  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));

  std::vector<int> expected(100);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(order.Get(), expected);
  EXPECT_EQ(threads.Get().size(), 1U);
  EXPECT_EQ(threads.Get().count(std::this_thread::get_id()), 0U);
}

TEST(TaskExecutor, RunsAsManyTasksAtOnceAsItHasThreads) {
  const LogCapture log;
  constexpr int kThreads = 3;
  std::atomic<int> waiting{0};
  std::atomic<int> met{0};
  TaskExecutor executor(kThreads, "parallel");

  for (int task = 0; task < kThreads; ++task) {
    executor.Execute([&waiting, &met] {
      ++waiting;
      met += WaitUntil([&waiting] { return waiting == kThreads; }) ? 1 : 0;
    });
  }
  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));

  EXPECT_EQ(met, kThreads);
}

TEST(TaskExecutor, HasOneThreadAtLeast) {
  const LogCapture log;
  std::atomic<bool> ran{false};
  TaskExecutor executor(0, "least");
  executor.Execute([&ran] { ran = true; });
  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
  EXPECT_TRUE(ran);
}

TEST(TaskExecutor, NamesEveryThreadBeforeItRunsATask) {
  const LogCapture log;
  Guarded<std::vector<std::string>> names;
  const auto systemInfo = std::make_shared<FakeSystemInfoService>([&](const std::string& name) {
    names.With([&name](std::vector<std::string>& all) { all.push_back(name); });
  });
  {
    TaskExecutor executor(2, "NativeRemoteFileManagerService", systemInfo);
    std::atomic<int> waiting{0};
    for (int task = 0; task < 2; ++task) {
      executor.Execute([&waiting] {
        ++waiting;
        WaitUntil([&waiting] { return waiting == 2; });
      });
    }
    EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
  }
  EXPECT_THAT(names.Get(),
              ElementsAre("NativeRemoteFileManagerService", "NativeRemoteFileManagerService"));
  EXPECT_EQ(systemInfo.use_count(), 1);
}

TEST(TaskExecutor, RunsTasksThoughTheNamingFails) {
  LogCapture log;
  log.ExpectLine(LogLevel::Error, "TaskExecutor",
                 "A task of unnamed failed: std.exception: no names today");
  std::atomic<bool> ran{false};
  {
    TaskExecutor executor(1, "unnamed", std::make_shared<FakeSystemInfoService>([](const auto&) {
                            throw std::runtime_error("no names today");
                          }));
    executor.Execute([&ran] { ran = true; });
    EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
  }
  EXPECT_TRUE(ran);
}

TEST(TaskExecutor, LogsATaskThatThrowsAndGoesOn) {
  LogCapture log;
  log.ExpectLine(LogLevel::Error, "TaskExecutor", "A task of hardy failed: filesystem: disk full");
  log.ExpectLine(LogLevel::Error, "TaskExecutor",
                 "A task of hardy failed: std.exception: went wrong");
  log.ExpectLine(LogLevel::Error, "TaskExecutor",
                 testing::StartsWith("A task of hardy failed: std.exception: something"));
  std::atomic<bool> ran{false};
  TaskExecutor executor(1, "hardy");

  executor.Execute(
      [] { throw SdkError("filesystem", "disk full", DebugInfo("src/services/filesystem/X", 1)); });
  executor.Execute([] { throw std::runtime_error("went wrong"); });
  executor.Execute([] { throw 42; });
  executor.Execute([&ran] { ran = true; });

  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
  EXPECT_TRUE(ran);
}

TEST(TaskExecutor, RefusesAnEmptyTask) {
  const LogCapture log;
  TaskExecutor executor(1, "picky");
  EXPECT_FALSE(executor.Execute(nullptr));
  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
}

TEST(TaskExecutor, TakesTasksFromItsTasks) {
  const LogCapture log;
  TaskExecutor executor(1, "nested");
  std::promise<void> finished;

  executor.Execute([&] { executor.Execute([&] { finished.set_value(); }); });

  EXPECT_EQ(finished.get_future().wait_for(kDefaultDeadline), std::future_status::ready);
  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
}

TEST(TaskExecutor, ReleasesWhatATaskHoldsOnceItHasRun) {
  const LogCapture log;
  auto held = std::make_shared<int>(1);
  const std::weak_ptr<int> watched = held;
  TaskExecutor executor(1, "tidy");

  executor.Execute([held = std::move(held)] { static_cast<void>(*held); });

  EXPECT_TRUE(WaitUntil([&watched] { return watched.expired(); }));
  EXPECT_TRUE(executor.Dispose(kDefaultDeadline));
}

TEST(TaskExecutor, RunsEveryTaskItTookWhileManyThreadsGiveThem) {
  const LogCapture log;
  constexpr int kGivers = 4;
  constexpr int kTasks = 2000;
  std::atomic<int> ran{0};
  std::atomic<int> taken{0};
  std::atomic<int> given{0};
  TaskExecutor executor(2, "busy");
  std::vector<std::thread> givers;
  for (int giver = 0; giver < kGivers; ++giver) {
    givers.emplace_back([&] {
      for (int task = 0; task < kTasks; ++task) {
        taken += executor.Execute([&ran] { ++ran; }) ? 1 : 0;
        ++given;
      }
    });
  }
  EXPECT_TRUE(WaitUntil([&given] { return given > kTasks; }));
  const bool allRan = executor.Dispose(kDefaultDeadline);
  for (std::thread& giver : givers) {
    giver.join();
  }

  EXPECT_TRUE(allRan);
  EXPECT_EQ(ran, taken);
}

}  // namespace
}  // namespace Velmora
