#include "ScreenContract.h"
#include "platform/headless/HeadlessScreen.h"
#include "support/FakeScreen.h"

namespace {

template <class Implementation>
class Subject {
 public:
  const Platform::Screen& Get() { return screen_; }

 private:
  const Implementation screen_{};
};

using Subjects =
    testing::Types<Subject<Platform::HeadlessScreen>, Subject<TestSupport::FakeScreen>>;
INSTANTIATE_TYPED_TEST_SUITE_P(WithoutADisplay, ScreenContractTest, Subjects);

}  // namespace
