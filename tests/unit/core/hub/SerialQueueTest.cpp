#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hub/SerialQueue.h"
#include "support/Guarded.h"
#include "support/WaitUntil.h"
#include "unit/core/hub/Gate.h"

namespace {

using std::chrono::steady_clock;
using testing::ElementsAre;
using Queue = Velmora::SerialQueue<int>;
using Admission = Queue::Admission;
using Outcome = Queue::Outcome;

struct Handled {
  TestSupport::Guarded<std::vector<int>> items;
  TestSupport::Guarded<std::vector<std::size_t>> overflows;

  Queue::Handlers Handlers(std::shared_ptr<Gate> gate = nullptr) {
    Queue::Handlers handlers;
    handlers.handle = [this, gate](int item) {
      items.With([item](auto& all) { all.push_back(item); });
      if (gate != nullptr) gate->Pass();
    };
    handlers.reportOverflow = [this](std::size_t count) {
      overflows.With([count](auto& all) { all.push_back(count); });
    };
    return handlers;
  }
};

steady_clock::time_point InTime() { return steady_clock::now() + TestSupport::kDefaultDeadline; }

TEST(SerialQueue, HandlesItemsInOrderOnItsOwnThread) {
  TestSupport::Guarded<std::thread::id> thread;
  Queue queue({10});
  Handled handled;
  Queue::Handlers handlers = handled.Handlers();
  handlers.begin = [&] { thread.Set(std::this_thread::get_id()); };
  EXPECT_EQ(queue.Push(1, Admission::Refusable), Outcome::Accepted);
  EXPECT_EQ(queue.Push(2, Admission::Always), Outcome::Accepted);
  queue.Start(std::move(handlers));
  EXPECT_EQ(queue.Push(3, Admission::CountedWhenRefused), Outcome::Accepted);
  EXPECT_TRUE(queue.WaitUntilIdle(InTime()));
  EXPECT_THAT(handled.items.Get(), ElementsAre(1, 2, 3));
  EXPECT_NE(thread.Get(), std::thread::id());
  EXPECT_NE(thread.Get(), std::this_thread::get_id());
}

TEST(SerialQueue, CountsAcceptedItemsWithoutThoseThatAlwaysGetIn) {
  Queue queue({2});
  queue.Push(1, Admission::Refusable);
  queue.Push(2, Admission::Always);
  queue.Push(3, Admission::CountedWhenRefused);
  queue.Push(4, Admission::Refusable);
  EXPECT_EQ(queue.AcceptedCount(), 2);
}

TEST(SerialQueue, RefusesTheNewestWhenFullAndReportsTheCountedOnesOnce) {
  const auto gate = std::make_shared<Gate>();
  Handled handled;
  Queue queue({2});
  queue.Start(handled.Handlers(gate));
  queue.Push(1, Admission::Refusable);
  gate->AwaitArrivals();
  EXPECT_EQ(queue.Push(2, Admission::Refusable), Outcome::Accepted);
  EXPECT_EQ(queue.Push(3, Admission::CountedWhenRefused), Outcome::Accepted);
  EXPECT_EQ(queue.Push(4, Admission::Refusable), Outcome::Full);
  EXPECT_EQ(queue.Push(5, Admission::CountedWhenRefused), Outcome::Full);
  EXPECT_EQ(queue.Push(6, Admission::CountedWhenRefused), Outcome::Full);
  EXPECT_EQ(queue.Push(7, Admission::Always), Outcome::Accepted);
  EXPECT_TRUE(handled.overflows.Get().empty());
  gate->Open();
  EXPECT_TRUE(queue.WaitUntilIdle(InTime()));
  EXPECT_THAT(handled.items.Get(), ElementsAre(1, 2, 3, 7));
  EXPECT_THAT(handled.overflows.Get(), ElementsAre(2U));
}

TEST(SerialQueue, KeepsAReserveForThoseThatMayUseIt) {
  Handled handled;
  Queue queue({1}, {2});
  EXPECT_EQ(queue.Push(1, Admission::Refusable), Outcome::Accepted);
  EXPECT_EQ(queue.Push(2, Admission::CountedWhenRefused), Outcome::Full);
  EXPECT_EQ(queue.Push(3, Admission::Reserved), Outcome::Accepted);
  EXPECT_EQ(queue.Push(4, Admission::Reserved), Outcome::Accepted);
  EXPECT_EQ(queue.Push(5, Admission::Reserved), Outcome::Full);
  EXPECT_EQ(queue.AcceptedCount(), 3);
  EXPECT_TRUE(queue.Start(handled.Handlers()));
  EXPECT_TRUE(queue.WaitUntilIdle(InTime()));
  EXPECT_THAT(handled.items.Get(), ElementsAre(1, 3, 4));
  EXPECT_THAT(handled.overflows.Get(), ElementsAre(2U));
}

TEST(SerialQueue, RefusesFurtherItemsOnceThoseThatWaitHaveTooManyBytes) {
  const auto gate = std::make_shared<Gate>();
  Handled handled;
  Queue queue({.items = 10, .bytes = 100}, {.items = 10, .bytes = 50});
  queue.Start(handled.Handlers(gate));
  EXPECT_EQ(queue.Push(1, Admission::Refusable, 1'000), Outcome::Accepted);
  gate->AwaitArrivals();  // no longer waits
  EXPECT_EQ(queue.Push(2, Admission::Refusable, 60), Outcome::Accepted);
  EXPECT_EQ(queue.Push(3, Admission::Refusable, 60), Outcome::Accepted);
  EXPECT_EQ(queue.Push(4, Admission::Refusable), Outcome::Full);
  EXPECT_EQ(queue.Push(5, Admission::CountedWhenRefused, 1), Outcome::Full);
  EXPECT_EQ(queue.Push(6, Admission::Reserved, 60), Outcome::Accepted);
  EXPECT_EQ(queue.Push(7, Admission::Reserved), Outcome::Full);
  EXPECT_EQ(queue.Push(8, Admission::Always, 1'000), Outcome::Accepted);
  gate->Open();
  EXPECT_TRUE(queue.WaitUntilIdle(InTime()));
  EXPECT_EQ(queue.Push(9, Admission::Refusable, 1'000), Outcome::Accepted);
  EXPECT_TRUE(queue.WaitUntilIdle(InTime()));
  EXPECT_THAT(handled.items.Get(), ElementsAre(1, 2, 3, 6, 8, 9));
  EXPECT_THAT(handled.overflows.Get(), ElementsAre(2U));
}

TEST(SerialQueue, ReportsWhatNeverCameAsFar) {
  Handled handled;
  Queue queue({1});
  queue.CountRefused();
  queue.CountRefused();
  queue.Start(handled.Handlers());
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return !handled.overflows.Get().empty(); }));
  EXPECT_THAT(handled.overflows.Get(), ElementsAre(2U));
}

TEST(SerialQueue, ReportsAtTheEndWhatWasRefusedAndNotYetReported) {
  const auto gate = std::make_shared<Gate>();
  Handled handled;
  bool hadBeenReported = false;
  Queue queue({1});
  Queue::Handlers handlers = handled.Handlers(gate);
  handlers.end = [&] { hadBeenReported = !handled.overflows.Get().empty(); };
  queue.Start(std::move(handlers));
  queue.Push(1, Admission::Refusable);
  gate->AwaitArrivals();
  queue.Push(2, Admission::Refusable);
  queue.Push(3, Admission::CountedWhenRefused);
  EXPECT_EQ(queue.Stop(), 1U) << "the refused one is not counted twice";
  gate->Open();
  queue.Join();
  EXPECT_THAT(handled.overflows.Get(), ElementsAre(1U));
  EXPECT_TRUE(hadBeenReported);
}

TEST(SerialQueue, CountsTheRefusedOnesAsDroppedWhenNoThreadWillReportThem) {
  Queue queue({1});
  queue.Push(1, Admission::Refusable);
  queue.Push(2, Admission::CountedWhenRefused);
  queue.Push(3, Admission::Refusable);
  EXPECT_EQ(queue.Stop(), 2U);
}

TEST(SerialQueue, StopDropsAndCountsWhatHasNotBegun) {
  const auto gate = std::make_shared<Gate>();
  Handled handled;
  bool hasEnded = false;
  Queue queue({10});
  Queue::Handlers handlers = handled.Handlers(gate);
  handlers.end = [&hasEnded] { hasEnded = true; };
  queue.Push(1, Admission::Refusable);
  queue.Push(2, Admission::Refusable);
  queue.Push(3, Admission::Always);
  queue.Push(4, Admission::Refusable);
  queue.Start(std::move(handlers));
  gate->AwaitArrivals();
  EXPECT_FALSE(queue.WaitUntilIdle(steady_clock::now()));
  EXPECT_EQ(queue.Stop(), 2U);
  EXPECT_EQ(queue.Stop(), 0U);
  EXPECT_EQ(queue.Push(5, Admission::Always), Outcome::Stopped);
  gate->Open();
  queue.Join();
  EXPECT_THAT(handled.items.Get(), ElementsAre(1));
  EXPECT_TRUE(hasEnded);
}

TEST(SerialQueue, DoesNotStartAfterStop) {
  Handled handled;
  Queue queue({10});
  queue.Push(1, Admission::Refusable);
  EXPECT_EQ(queue.Stop(), 1U);
  EXPECT_FALSE(queue.Start(handled.Handlers()));
  queue.Join();
  EXPECT_TRUE(handled.items.Get().empty());
}

TEST(SerialQueue, KnowsItsOwnThreadAndDoesNotWaitThere) {
  Queue queue({10});
  TestSupport::Guarded<std::vector<bool>> answers;
  Queue::Handlers handlers;
  handlers.handle = [&](int) {
    answers.Set({queue.IsOwnThread(), queue.WaitUntilIdle(InTime())});
    queue.Stop();
    queue.Join();
  };
  queue.Start(std::move(handlers));
  queue.Push(1, Admission::Refusable);
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return !answers.Get().empty(); }));
  queue.Join();
  EXPECT_THAT(answers.Get(), ElementsAre(true, false));
  EXPECT_FALSE(queue.IsOwnThread());
}

TEST(SerialQueue, MayBeDestroyedOnItsOwnThread) {
  struct Owner {
    Queue queue{{10}};
    std::shared_ptr<std::atomic<bool>> isGone = std::make_shared<std::atomic<bool>>(false);
    ~Owner() { isGone->store(true); }
  };
  auto owner = std::make_shared<Owner>();
  const std::shared_ptr<std::atomic<bool>> isGone = owner->isGone;
  Queue::Handlers handlers;
  handlers.handle = [owner](int) { owner->queue.Stop(); };
  owner->queue.Start(std::move(handlers));
  owner->queue.Push(1, Admission::Refusable);
  owner = nullptr;
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return isGone->load(); }));
  EXPECT_TRUE(TestSupport::WaitUntil([] { return Velmora::LeftoverThreads::JoinThoseDone(); }));
}

TEST(SerialQueue, LosesNothingBetweenManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kItems = 2'000;
  Handled handled;
  Queue queue({kThreads * kItems});
  queue.Start(handled.Handlers());
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&queue, thread] {
      for (int item = 0; item < kItems; ++item) {
        queue.Push(thread * kItems + item, Admission::Refusable);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(queue.WaitUntilIdle(InTime()));
  const std::vector<int> items = handled.items.Get();
  ASSERT_EQ(items.size(), static_cast<std::size_t>(kThreads * kItems));
  std::vector<int> next(kThreads, 0);
  for (const int item : items) {
    const auto thread = static_cast<std::size_t>(item / kItems);
    EXPECT_EQ(item % kItems, next[thread]++);
  }
}

}  // namespace
