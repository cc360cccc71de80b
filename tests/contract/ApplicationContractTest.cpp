#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/GioApplication.h"
#include "support/FakeApplication.h"

namespace {

template <class Implementation>
class ApplicationContractTest : public testing::Test {
 protected:
  Implementation application_;
};

using Implementations = testing::Types<Platform::GioApplication, TestSupport::FakeApplication>;
TYPED_TEST_SUITE(ApplicationContractTest, Implementations);

TYPED_TEST(ApplicationContractTest, IsActiveToBeginWith) {
  EXPECT_EQ(this->application_.State(), Platform::ApplicationState::Active);
}

TYPED_TEST(ApplicationContractTest, HasAKeyWindowOnlyAmongItsWindows) {
  const auto windows = this->application_.Windows();
  const auto key = this->application_.KeyWindow();
  EXPECT_TRUE(key == nullptr || std::find(windows.begin(), windows.end(), key) != windows.end());
}

TYPED_TEST(ApplicationContractTest, OpensNothingThatIsNoAbsoluteUrl) {
  EXPECT_FALSE(this->application_.OpenUrl(""));
  EXPECT_FALSE(this->application_.OpenUrl("nothing"));
  EXPECT_FALSE(this->application_.OpenUrl(std::string("a\0b:c", 5)));
  EXPECT_FALSE(this->application_.OpenUrl(std::string(10'000'000, 'a')));
}

}  // namespace
