#pragma once

#include <chrono>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "QEXCore_iOS/Platform/Ui.h"

// What every Ui keeps. A subject owns one (Ui()), can have the main queue's work done until a
// condition holds (Until(condition)), and says whether it has a screen (kHasScreen).
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

TYPED_TEST_SUITE_P(UiContractTest);

TYPED_TEST_P(UiContractTest, MakesEverythingOrThrows) {
  Platform::Ui& ui = this->subject_.Ui();
  this->ExpectMade([&] { return ui.CreateAlertController("title", std::nullopt); });
  this->ExpectMade([&] { return ui.CreateAlertView({}); });
  this->ExpectMade([&] { return ui.CreateWebView({}); });
  this->ExpectMade([&] { return ui.CreateImageView({}); });
  this->ExpectMade([&] { return ui.CreatePanGestureRecognizer([](auto&) {}); });
  this->ExpectMade([&] { return ui.CreateTapGestureRecognizer(1, [] {}); });
}

TYPED_TEST_P(UiContractTest, AnimatesAtOnceAndCompletesLater) {
  std::vector<int> calls;
  this->subject_.Ui().Animate(
      std::chrono::milliseconds(30), [&] { calls.push_back(1); }, [&] { calls.push_back(2); });
  EXPECT_THAT(calls, testing::ElementsAre(1));
  EXPECT_TRUE(this->subject_.Until([&] { return calls.size() == 2; }));
  EXPECT_THAT(calls, testing::ElementsAre(1, 2));
}

TYPED_TEST_P(UiContractTest, AnimatesNothingWithoutHarm) {
  bool isDone = false;
  this->subject_.Ui().Animate(std::chrono::milliseconds(30), nullptr, nullptr);
  this->subject_.Ui().Animate(std::chrono::milliseconds(0), nullptr, [&] { isDone = true; });
  EXPECT_FALSE(isDone);
  EXPECT_TRUE(this->subject_.Until([&] { return isDone; }));
}

TYPED_TEST_P(UiContractTest, GivesTheFrameThatAViewIsOnItsWayTo) {
  if constexpr (TypeParam::kHasScreen) {
    const Platform::Rect from{1, 2, 30, 40};
    const Platform::Rect to{5, 6, 70, 80};
    Platform::ImageViewSettings settings;
    settings.look.frame = from;
    const auto view = this->subject_.Ui().CreateImageView(settings);
    EXPECT_EQ(view->Frame(), from);
    bool isDone = false;
    this->subject_.Ui().Animate(
        std::chrono::milliseconds(30), [&] { view->SetFrame(to); }, [&] { isDone = true; });
    EXPECT_EQ(view->Frame(), to);
    EXPECT_TRUE(this->subject_.Until([&] { return isDone; }));
    EXPECT_EQ(view->Frame(), to);
    view->RemoveFromSuperview();
  }
}

TYPED_TEST_P(UiContractTest, WatchesRotation) {
  EXPECT_NE(this->subject_.Ui().WatchRotation([] {}), nullptr);
}

REGISTER_TYPED_TEST_SUITE_P(UiContractTest, MakesEverythingOrThrows,
                            AnimatesAtOnceAndCompletesLater, AnimatesNothingWithoutHarm,
                            GivesTheFrameThatAViewIsOnItsWayTo, WatchesRotation);
