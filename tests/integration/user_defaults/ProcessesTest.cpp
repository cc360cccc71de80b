// User defaults that several processes use at once, some of which are killed.

#include <chrono>
#include <csignal>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "Fixture.h"
#include "RawDatabase.h"
#include "StressBoard.h"
#include "WorkerProcess.h"
#include "WorkerValues.h"
#include "support/WaitUntil.h"

namespace {

using Platform::Value;
using testing::Eq;

class SqliteUserDefaultsProcesses : public SqliteUserDefaultsTest {};

// Reads what the worker says is stored, up to `count` numbers, then kills it. The last number.
std::int64_t KillAfter(WorkerProcess& worker, int count) {
  std::int64_t last = -1;
  for (int read = 0; read < count && worker.Read(&last, sizeof(last)); ++read) {
  }
  worker.Kill();
  EXPECT_EQ(worker.Wait(), -SIGKILL);
  while (worker.Read(&last, sizeof(last))) {
  }
  return last;
}

TEST_F(SqliteUserDefaultsProcesses, LoseNoWriteThatWasDoneWhenAWriterIsKilled) {
  constexpr int kKills = 100;
  std::minstd_rand random(20240229);
  const auto defaults = NewStandard();
  std::int64_t next = 0;
  for (int kill = 0; kill < kKills; ++kill) {
    WorkerProcess worker({"write", Folder(), std::to_string(next)});
    const std::int64_t last = KillAfter(worker, 1 + static_cast<int>(random() % 200));
    ASSERT_GE(last, next);
    const std::int64_t oldest = std::max<std::int64_t>(0, last - WorkerValues::kKeys + 2);
    for (std::int64_t number = oldest; number <= last; ++number) {
      ASSERT_EQ(defaults->ObjectForKey(WorkerValues::KeyOf(number)), WorkerValues::ValueOf(number));
    }
    // The write behind the last one may have been done or not, but not by halves.
    const Value open = defaults->ObjectForKey(WorkerValues::KeyOf(last + 1));
    const std::int64_t number = open.Get("number").AsInt64();
    if (!open.IsAbsent()) {
      ASSERT_EQ(open, WorkerValues::ValueOf(number));
    }
    ASSERT_THAT(number, testing::AnyOf(Eq(last + 1), Eq(last + 1 - WorkerValues::kKeys), Eq(0)));
    next = last + 1;
  }
  EXPECT_EQ(RunRawSql(StandardPath(), "PRAGMA integrity_check"), "ok");
}

TEST_F(SqliteUserDefaultsProcesses, SeeNoStaleValueOfOneAnother) {
  std::vector<std::unique_ptr<WorkerProcess>> workers;
  for (std::size_t process = 0; process < StressBoard::kProcesses; ++process) {
    workers.push_back(std::make_unique<WorkerProcess>(std::vector<std::string>{
        "stress", Folder(), directory_.PathOf("board"), std::to_string(process)}));
  }
  for (const auto& worker : workers) {
    EXPECT_EQ(worker->ReadAll(), "0 stale reads\n");
    EXPECT_EQ(worker->Wait(), 0);
  }
  const StressBoard::Mapping board(directory_.PathOf("board"));
  const auto defaults = NewStandard();
  for (std::size_t key = 0; key < StressBoard::kKeys; ++key) {
    EXPECT_EQ(defaults->ObjectForKey(StressBoard::KeyOf(key)).AsInt64(), board->stored[key]);
    EXPECT_GT(board->stored[key], 0);
  }
}

TEST_F(SqliteUserDefaultsProcesses, SeeAWriteThatTheyReadInTheMidstOf) {
  const auto defaults = NewStandard();
  const StressBoard::Mapping board(directory_.PathOf("board"));
  WorkerProcess worker({"pace", Folder(), directory_.PathOf("board")});
  int stale = 0;
  for (std::int64_t count = 1; count <= StressBoard::kPacedWrites; ++count) {
    const auto deadline = std::chrono::steady_clock::now() + TestSupport::kDefaultDeadline;
    while (board->stored[0] < count) {
      // Some of these reads fall between the parts of the write.
      defaults->ObjectForKey(StressBoard::KeyOf(0));
      ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    }
    // Nobody writes now, so what is stale would stay so.
    const Value found = defaults->ObjectForKey(StressBoard::KeyOf(0));
    if (found.Get("number").AsInt64() != count) ++stale;
    board->seen = count;
  }
  EXPECT_EQ(stale, 0);
  EXPECT_EQ(worker.Wait(), 0);
}

TEST_F(SqliteUserDefaultsProcesses, SeeNoStaleValueWithinOneProcess) {
  constexpr std::size_t kThreads = 8;
  constexpr std::int64_t kWrites = 60;
  constexpr std::int64_t kReadsPerWrite = 20;
  const std::vector<std::shared_ptr<Platform::UserDefaults>> providers = {NewStandard(),
                                                                          NewStandard()};
  std::vector<std::atomic<std::int64_t>> stored(kThreads);
  std::atomic<int> staleReads{0};
  {
    std::vector<std::jthread> threads;
    for (std::size_t own = 0; own < kThreads; ++own) {
      threads.emplace_back([&, own] {
        Platform::UserDefaults& defaults = *providers[own % 2];
        for (std::int64_t count = 1; count <= kWrites; ++count) {
          defaults.SetObject(StressBoard::KeyOf(own), count);
          stored[own] = count;
          for (std::int64_t read = 0; read < kReadsPerWrite; ++read) {
            const std::size_t other = static_cast<std::size_t>(count + read) % kThreads;
            const std::int64_t atLeast = stored[other];
            const Value found = defaults.ObjectForKey(StressBoard::KeyOf(other));
            if (found.AsInt64() < atLeast) ++staleReads;
          }
        }
      });
    }
  }
  EXPECT_EQ(staleReads, 0);
}

}  // namespace
