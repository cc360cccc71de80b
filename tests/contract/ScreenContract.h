#pragma once

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Screen.h"

// What every Screen keeps. A subject owns one (Get()).
template <class Subject>
class ScreenContractTest : public testing::Test {
 protected:
  Subject subject_;
  const Platform::Screen& screen_ = subject_.Get();
};

TYPED_TEST_SUITE_P(ScreenContractTest);

TYPED_TEST_P(ScreenContractTest, HasBothSizesOrNone) {
  const Platform::ScreenMetrics metrics = this->screen_.MainScreen();
  EXPECT_GE(metrics.width, 0);
  EXPECT_GE(metrics.height, 0);
  EXPECT_EQ(metrics.width == 0, metrics.height == 0);
  EXPECT_GE(metrics.scale, 1);
}

REGISTER_TYPED_TEST_SUITE_P(ScreenContractTest, HasBothSizesOrNone);
