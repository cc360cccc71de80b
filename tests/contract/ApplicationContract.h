#pragma once

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Application.h"

// What every Application keeps. A subject owns one (Get()).
template <class Subject>
class ApplicationContractTest : public testing::Test {
 protected:
  Subject subject_;
  Platform::Application& application_ = subject_.Get();
};

TYPED_TEST_SUITE_P(ApplicationContractTest);

TYPED_TEST_P(ApplicationContractTest, IsActiveToBeginWith) {
  EXPECT_EQ(this->application_.State(), Platform::ApplicationState::Active);
}

TYPED_TEST_P(ApplicationContractTest, HasAKeyWindowOnlyAmongItsWindows) {
  const auto windows = this->application_.Windows();
  const auto key = this->application_.KeyWindow();
  EXPECT_TRUE(key == nullptr || std::find(windows.begin(), windows.end(), key) != windows.end());
}

TYPED_TEST_P(ApplicationContractTest, OpensNothingThatIsNoAbsoluteUrl) {
  EXPECT_FALSE(this->application_.OpenUrl(""));
  EXPECT_FALSE(this->application_.OpenUrl("nothing"));
  EXPECT_FALSE(this->application_.OpenUrl(std::string("a\0b:c", 5)));
  EXPECT_FALSE(this->application_.OpenUrl(std::string(10'000'000, 'a')));
}

REGISTER_TYPED_TEST_SUITE_P(ApplicationContractTest, IsActiveToBeginWith,
                            HasAKeyWindowOnlyAmongItsWindows, OpensNothingThatIsNoAbsoluteUrl);
