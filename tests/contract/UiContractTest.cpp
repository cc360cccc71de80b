#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/headless/HeadlessUi.h"
#include "support/FakeMainQueue.h"
#include "support/FakeSystemLog.h"
#include "support/FakeUi.h"

namespace {

using namespace std::chrono_literals;

using testing::ElementsAre;

class HeadlessSubject {
 public:
  Platform::Ui& Ui() { return ui_; }
  TestSupport::FakeMainQueue& Queue() { return *queue_; }
  static constexpr bool kHasScreen = false;

  std::shared_ptr<TestSupport::FakeSystemLog> log = std::make_shared<TestSupport::FakeSystemLog>();

 private:
  std::shared_ptr<TestSupport::FakeMainQueue> queue_ =
      std::make_shared<TestSupport::FakeMainQueue>(log);
  Platform::HeadlessUi ui_{log, queue_};
};

class FakeSubject {
 public:
  Platform::Ui& Ui() { return ui_; }
  TestSupport::FakeMainQueue& Queue() { return *queue_; }
  static constexpr bool kHasScreen = true;

 private:
  std::shared_ptr<TestSupport::FakeMainQueue> queue_ =
      std::make_shared<TestSupport::FakeMainQueue>(std::make_shared<TestSupport::FakeSystemLog>());
  TestSupport::FakeUi ui_{queue_};
};

template <class Subject>
class UiContractTest : public testing::Test {
 protected:
  // Making gives something where there is a screen, and throws where there is none.
  template <class Make>
  void ExpectMade(Make&& make) {
    if (Subject::kHasScreen) {
      EXPECT_NE(make(), nullptr);
    } else {
      EXPECT_THROW(make(), Platform::DeviceError);
    }
  }

  Subject subject_;
};

using Subjects = testing::Types<HeadlessSubject, FakeSubject>;
TYPED_TEST_SUITE(UiContractTest, Subjects);

TYPED_TEST(UiContractTest, MakesEverythingOrThrows) {
  Platform::Ui& ui = this->subject_.Ui();
  this->ExpectMade([&] { return ui.CreateAlertController("title", std::nullopt); });
  this->ExpectMade([&] { return ui.CreateAlertView({}); });
  this->ExpectMade([&] { return ui.CreateWebView({}); });
  this->ExpectMade([&] { return ui.CreateImageView({}); });
  this->ExpectMade([&] { return ui.CreatePanGestureRecognizer([](auto&) {}); });
  this->ExpectMade([&] { return ui.CreateTapGestureRecognizer(1, [] {}); });
}

TYPED_TEST(UiContractTest, AnimatesAtOnceAndCompletesLater) {
  std::vector<int> calls;
  this->subject_.Ui().Animate(
      300ms, [&] { calls.push_back(1); }, [&] { calls.push_back(2); });
  EXPECT_THAT(calls, ElementsAre(1));
  this->subject_.Queue().RunAll();
  EXPECT_THAT(calls, ElementsAre(1, 2));
}

TYPED_TEST(UiContractTest, AnimatesNothingWithoutHarm) {
  this->subject_.Ui().Animate(300ms, nullptr, nullptr);
  this->subject_.Queue().RunAll();
}

TYPED_TEST(UiContractTest, WatchesRotation) {
  EXPECT_NE(this->subject_.Ui().WatchRotation([] {}), nullptr);
}

TEST(HeadlessUi, LogsALineForWhatItDoesNotShow) {
  HeadlessSubject subject;
  EXPECT_THROW(subject.Ui().CreateAlertController("title", "message"), Platform::DeviceError);
  EXPECT_THROW(subject.Ui().CreateWebView({}), Platform::DeviceError);
  EXPECT_THROW(subject.Ui().CreateImageView({}), Platform::DeviceError);
  EXPECT_THAT(subject.log->TakeLines(), ElementsAre("An alert was not made: there is no screen.",
                                                    "A web view was not made: there is no screen.",
                                                    "An image was not made: there is no screen."));
}

}  // namespace
