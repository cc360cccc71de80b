#include <gmock/gmock.h>

#include "platform/headless/HeadlessScreen.h"
#include "support/FakeScreen.h"

namespace {

template <class Implementation>
class ScreenContractTest : public testing::Test {
 protected:
  Implementation screen_;
};

using Implementations = testing::Types<Platform::HeadlessScreen, TestSupport::FakeScreen>;
TYPED_TEST_SUITE(ScreenContractTest, Implementations);

TYPED_TEST(ScreenContractTest, HasBothSizesOrNone) {
  const Platform::ScreenMetrics metrics = this->screen_.MainScreen();
  EXPECT_GE(metrics.width, 0);
  EXPECT_GE(metrics.height, 0);
  EXPECT_EQ(metrics.width == 0, metrics.height == 0);
  EXPECT_GE(metrics.scale, 1);
}

}  // namespace
