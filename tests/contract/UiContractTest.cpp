#include <functional>
#include <memory>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "UiContract.h"
#include "platform/headless/HeadlessUi.h"
#include "support/FakeMainQueue.h"
#include "support/FakeSystemLog.h"
#include "support/FakeUi.h"

namespace {

using testing::ElementsAre;

class HeadlessSubject {
 public:
  Platform::Ui& Ui() { return ui_; }
  bool Until(const std::function<bool()>& condition) {
    queue_->RunAll();
    return condition();
  }
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
  bool Until(const std::function<bool()>& condition) {
    queue_->RunAll();
    return condition();
  }
  static constexpr bool kHasScreen = true;

 private:
  std::shared_ptr<TestSupport::FakeMainQueue> queue_ =
      std::make_shared<TestSupport::FakeMainQueue>(std::make_shared<TestSupport::FakeSystemLog>());
  TestSupport::FakeUi ui_{queue_};
};

using Subjects = testing::Types<HeadlessSubject, FakeSubject>;
INSTANTIATE_TYPED_TEST_SUITE_P(WithoutADisplay, UiContractTest, Subjects);

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
