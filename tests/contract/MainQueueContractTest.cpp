#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/GlibMainQueue.h"
#include "platform/linux/MainQueueCore.h"
#include "support/FakeMainQueue.h"
#include "support/FakeSystemLog.h"
#include "support/Guarded.h"
#include "support/RunningContext.h"
#include "support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;

using testing::ElementsAre;

// Each subject owns a queue and can let its work be done until a condition holds.

// A program that runs no loop.
class OwnThreadSubject {
 public:
  Platform::MainQueue& Queue() { return *queue_; }
  TestSupport::FakeSystemLog& Log() { return *log_; }
  bool Until(const std::function<bool()>& condition) { return TestSupport::WaitUntil(condition); }
  void Destroy() { queue_.reset(); }

 private:
  const std::shared_ptr<TestSupport::FakeSystemLog> log_ =
      std::make_shared<TestSupport::FakeSystemLog>();
  const Platform::GMainContextPointer context_{g_main_context_new()};
  std::unique_ptr<Platform::GlibMainQueue> queue_ = std::make_unique<Platform::GlibMainQueue>(
      std::make_shared<Platform::MainQueueCore>(log_, context_.get(), 0ms));
};

// A program that runs its loop from the start.
class RunningLoopSubject {
 public:
  Platform::MainQueue& Queue() { return *queue_; }
  TestSupport::FakeSystemLog& Log() { return *log_; }
  bool Until(const std::function<bool()>& condition) { return TestSupport::WaitUntil(condition); }
  void Destroy() { queue_.reset(); }

 private:
  const std::shared_ptr<TestSupport::FakeSystemLog> log_ =
      std::make_shared<TestSupport::FakeSystemLog>();
  TestSupport::RunningContext context_;
  std::unique_ptr<Platform::GlibMainQueue> queue_ = std::make_unique<Platform::GlibMainQueue>(
      std::make_shared<Platform::MainQueueCore>(log_, context_.Get(), 60s));
};

class FakeSubject {
 public:
  Platform::MainQueue& Queue() { return *queue_; }
  TestSupport::FakeSystemLog& Log() { return *log_; }
  bool Until(const std::function<bool()>& condition) {
    for (int i = 0; i < 10'000 && !condition(); ++i) queue_->Advance(1ms);
    return condition();
  }
  void Destroy() { queue_.reset(); }

 private:
  const std::shared_ptr<TestSupport::FakeSystemLog> log_ =
      std::make_shared<TestSupport::FakeSystemLog>();
  std::unique_ptr<TestSupport::FakeMainQueue> queue_ =
      std::make_unique<TestSupport::FakeMainQueue>(log_);
};

template <class Subject>
class MainQueueContractTest : public testing::Test {
 protected:
  TestSupport::Guarded<std::vector<int>> done_;  // outlives the queue
  Subject subject_;

  void Note(int number) {
    done_.With([number](auto& done) { done.push_back(number); });
  }
  bool UntilDone(std::size_t count) {
    return subject_.Until([&] { return done_.Get().size() >= count; });
  }
};

using Subjects = testing::Types<OwnThreadSubject, RunningLoopSubject, FakeSubject>;
TYPED_TEST_SUITE(MainQueueContractTest, Subjects);

TYPED_TEST(MainQueueContractTest, DoesWorkInTheOrderInWhichItCame) {
  for (int i = 0; i < 5; ++i) this->subject_.Queue().Async([this, i] { this->Note(i); });
  EXPECT_TRUE(this->UntilDone(5));
  EXPECT_THAT(this->done_.Get(), ElementsAre(0, 1, 2, 3, 4));
}

TYPED_TEST(MainQueueContractTest, NeverRunsWorkWithinTheCall) {
  std::atomic<bool> returned{false};
  std::atomic<bool> ranWithin{false};
  this->subject_.Queue().Async([&, this] {
    this->subject_.Queue().Async([&, this] {
      ranWithin = !returned;
      this->Note(1);
    });
    returned = true;
    this->Note(0);
  });
  EXPECT_TRUE(this->UntilDone(2));
  EXPECT_FALSE(ranWithin);
}

TYPED_TEST(MainQueueContractTest, DoesOnePieceAfterTheOtherWhoeverHandsItOver) {
  std::atomic<int> running{0};
  std::atomic<bool> overlapped{false};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, this] {
      for (int j = 0; j < 50; ++j) {
        this->subject_.Queue().Async([&, this, j] {
          if (++running != 1) overlapped = true;
          this->Note(j);
          --running;
        });
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(this->UntilDone(200));
  EXPECT_FALSE(overlapped);
}

TYPED_TEST(MainQueueContractTest, CatchesWhatWorkThrowsAndGoesOn) {
  this->subject_.Queue().Async([] { throw std::runtime_error("a fault"); });
  this->subject_.Queue().Async([] { throw 7; });
  this->subject_.Queue().Async([this] { this->Note(1); });
  EXPECT_TRUE(this->UntilDone(1));
  EXPECT_THAT(this->subject_.Log().TakeLines(),
              ElementsAre("Work on the main queue threw: a fault",
                          "Work on the main queue threw something that is no exception."));
}

TYPED_TEST(MainQueueContractTest, TakesNoHarmFromEmptyWork) {
  this->subject_.Queue().Async(nullptr);
  this->subject_.Queue().Async([this] { this->Note(1); });
  EXPECT_TRUE(this->UntilDone(1));
}

TYPED_TEST(MainQueueContractTest, TicksUntilTheTimerGoes) {
  auto timer = this->subject_.Queue().Repeat(1ms, [this] { this->Note(1); });
  EXPECT_TRUE(this->UntilDone(3));
  timer.reset();
  // What had begun when the timer went has ended once work that came later is done.
  this->subject_.Queue().Async([this] { this->Note(2); });
  EXPECT_TRUE(this->subject_.Until([this] { return this->done_.Get().back() == 2; }));
  const std::size_t count = this->done_.Get().size();
  this->subject_.Queue().Async([this] { this->Note(3); });
  EXPECT_TRUE(this->subject_.Until([this] { return this->done_.Get().back() == 3; }));
  EXPECT_EQ(this->done_.Get().size(), count + 1);
}

TYPED_TEST(MainQueueContractTest, LetsATimerGoWithinItsOwnTick) {
  std::unique_ptr<Platform::MainQueueTimer> timer;
  this->subject_.Queue().Async([&, this] {
    timer = this->subject_.Queue().Repeat(1ms, [&, this] {
      timer.reset();
      this->Note(1);
    });
  });
  EXPECT_TRUE(this->UntilDone(1));
  this->subject_.Queue().Async([this] { this->Note(2); });
  EXPECT_TRUE(this->UntilDone(2));
  EXPECT_THAT(this->done_.Get(), ElementsAre(1, 2));
}

TYPED_TEST(MainQueueContractTest, LetsATimerOutliveTheQueue) {
  const auto timer = this->subject_.Queue().Repeat(1ms, [this] { this->Note(1); });
  EXPECT_TRUE(this->UntilDone(1));
  this->subject_.Destroy();
}

TYPED_TEST(MainQueueContractTest, DropsWhatHasNotBegunWhenItGoes) {
  const auto held = std::make_shared<int>(7);
  for (int i = 0; i < 100; ++i) this->subject_.Queue().Async([held] {});
  this->subject_.Destroy();
  EXPECT_EQ(held.use_count(), 1);
}

TYPED_TEST(MainQueueContractTest, GoesWithoutEverBeingUsed) { this->subject_.Destroy(); }

}  // namespace
