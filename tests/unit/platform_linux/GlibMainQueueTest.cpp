#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/linux/GlibMainQueue.h"
#include "platform/linux/MainQueueCore.h"
#include "support/FakeSystemLog.h"
#include "support/RunningContext.h"
#include "support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;

using Platform::GlibMainQueue;
using TestSupport::RunningContext;

int ThreadsNamed(const std::string& name) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string text;
    std::getline(std::ifstream(entry.path() / "comm"), text);
    if (text == name) ++count;
  }
  return count;
}

std::shared_ptr<Platform::MainQueueCore> NewCore(GMainContext* context,
                                                 std::chrono::milliseconds grace) {
  return std::make_shared<Platform::MainQueueCore>(std::make_shared<TestSupport::FakeSystemLog>(),
                                                   context, grace);
}

std::thread::id ThreadOfWork(GlibMainQueue& queue) {
  std::promise<std::thread::id> thread;
  queue.Async([&] { thread.set_value(std::this_thread::get_id()); });
  return thread.get_future().get();
}

TEST(GlibMainQueue, StartsItsThreadAtTheFirstWorkAndJoinsIt) {
  const RunningContext context(RunningContext::Begin::Later);
  const int before = ThreadsNamed("QEXMainQueue");
  {
    GlibMainQueue queue(NewCore(context.Get(), 0ms));
    EXPECT_EQ(ThreadsNamed("QEXMainQueue"), before);
    ThreadOfWork(queue);
    EXPECT_EQ(ThreadsNamed("QEXMainQueue"), before + 1);
  }
  EXPECT_EQ(ThreadsNamed("QEXMainQueue"), before);
}

TEST(GlibMainQueue, WaitsForTheLoopHoweverLongThatTakes) {
  RunningContext context(RunningContext::Begin::Later);
  GlibMainQueue queue(NewCore(context.Get(), Platform::MainQueueCore::kNoEndOfGrace));
  std::promise<std::thread::id> thread;
  auto done = thread.get_future();
  queue.Async([&] { thread.set_value(std::this_thread::get_id()); });
  EXPECT_EQ(done.wait_for(300ms), std::future_status::timeout);
  context.Start();
  EXPECT_EQ(done.get(), context.ThreadId());
}

TEST(GlibMainQueue, GoesWithoutALoopThatItWaitsFor) {
  const auto held = std::make_shared<int>(7);
  {
    const RunningContext context(RunningContext::Begin::Later);
    GlibMainQueue queue(NewCore(context.Get(), Platform::MainQueueCore::kNoEndOfGrace));
    queue.Async([held] {});
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(GlibMainQueue, WorksOnTheThreadThatRunsTheContext) {
  const RunningContext context;
  GlibMainQueue queue(NewCore(context.Get(), 60s));
  EXPECT_EQ(ThreadOfWork(queue), context.ThreadId());
}

TEST(GlibMainQueue, MovesToTheContextWhenThatStartsToRun) {
  RunningContext context(RunningContext::Begin::Later);
  GlibMainQueue queue(NewCore(context.Get(), 0ms));
  const std::thread::id own = ThreadOfWork(queue);
  EXPECT_NE(own, std::this_thread::get_id());
  context.Start();
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return ThreadOfWork(queue) == context.ThreadId(); }));
  EXPECT_EQ(ThreadOfWork(queue), context.ThreadId());
}

TEST(GlibMainQueue, GivesTheLoopTimeToStart) {
  RunningContext context(RunningContext::Begin::Later);
  GlibMainQueue queue(NewCore(context.Get(), 60s));
  std::promise<std::thread::id> thread;
  queue.Async([&] { thread.set_value(std::this_thread::get_id()); });
  context.Start();
  EXPECT_EQ(thread.get_future().get(), context.ThreadId());
}

TEST(GlibMainQueue, NeverOwnsTheContext) {
  const Platform::GMainContextPointer context(g_main_context_new());
  GlibMainQueue queue(NewCore(context.get(), 0ms));
  ThreadOfWork(queue);
  EXPECT_TRUE(g_main_context_acquire(context.get()));
  g_main_context_release(context.get());
}

TEST(GlibMainQueue, GoesWhileItWaitsForTheLoop) {
  const Platform::GMainContextPointer context(g_main_context_new());
  GlibMainQueue queue(NewCore(context.get(), 60s));
  queue.Async([] {});
}

TEST(GlibMainQueue, LeavesNothingInTheContext) {
  const Platform::GMainContextPointer context(g_main_context_new());
  {
    GlibMainQueue queue(NewCore(context.get(), 0ms));
    ThreadOfWork(queue);
  }
  EXPECT_FALSE(g_main_context_pending(context.get()));
}

TEST(GlibMainQueue, MayBeDestroyedByItsOwnWork) {
  const RunningContext context(RunningContext::Begin::Later);
  auto queue = std::make_shared<GlibMainQueue>(NewCore(context.Get(), 0ms));
  std::promise<void> done;
  GlibMainQueue& work = *queue;
  std::promise<void> released;
  work.Async([&, held = queue]() mutable {
    released.get_future().wait();
    held.reset();
    done.set_value();
  });
  queue.reset();
  released.set_value();
  done.get_future().get();
}

TEST(GlibMainQueue, WaitsForTheWorkThatIsUnderWayWhenItGoes) {
  const RunningContext context;
  bool ended = false;
  std::promise<void> begun;
  std::promise<void> going;
  {
    GlibMainQueue queue(NewCore(context.Get(), 60s));
    queue.Async([&] {
      begun.set_value();
      going.get_future().get();
      ended = true;
    });
    begun.get_future().get();
    // Work that is dropped, which tells that the queue is about to go.
    queue.Async([held = std::shared_ptr<void>(nullptr, [&](void*) { going.set_value(); })] {});
  }
  EXPECT_TRUE(ended);
}

}  // namespace
