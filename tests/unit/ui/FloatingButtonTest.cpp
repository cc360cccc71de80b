#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "UiFixture.h"
#include "services/ui/FloatingButtonPicture.h"
#include "services/ui/KRVFloatingButtonHandler.h"

namespace {

using namespace std::chrono_literals;

using Platform::Point;
using Platform::Rect;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::FakePanGestureRecognizer;
using TestSupport::FakeTapGestureRecognizer;
using TestSupport::LogLevel;

class FloatingButton : public TestSupport::UiFixture {
 protected:
  void Display() {
    button->Display();
    host.mainQueue->RunAll();
  }

  TestSupport::FakeImageView& View() { return *host.ui->imageViews.back(); }
  TestSupport::FakeWindow& Window() { return *host.application->window; }

  std::shared_ptr<Velmora::FloatingButtonInterface> button =
      service->CreateFloatingButton(std::make_shared<TestSupport::ButtonListener>(calls));
};

// The number that stands at `offset`, the highest byte first.
std::uint32_t NumberAt(const std::string& bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(offset + i));
  }
  return number;
}

TEST_F(FloatingButton, IsNotShownUntilItIsTold) {
  host.mainQueue->RunAll();
  EXPECT_THAT(host.ui->imageViews, IsEmpty());
  button->Display();
  EXPECT_THAT(host.ui->imageViews, IsEmpty());
  host.mainQueue->RunAll();
  EXPECT_THAT(Window().subviews, SizeIs(1));
}

TEST_F(FloatingButton, LiesAtTheRightEdgeInTheMiddle) {
  EXPECT_EQ(KRVFloatingButtonHandler::getImageFrame(), (Rect{300, 376, 60, 60}));
  Display();
  EXPECT_EQ(View().frame, (Rect{300, 376, 60, 60}));
}

TEST_F(FloatingButton, LiesOutsideWithoutAWindow) {
  host.application->HaveNoWindow();
  EXPECT_EQ(KRVFloatingButtonHandler::getImageFrame(), (Rect{-75, -30, 60, 60}));
}

TEST_F(FloatingButton, LooksAsItShould) {
  Display();
  const Platform::ImageViewSettings& settings = View().settings;
  EXPECT_TRUE(settings.scalesToFit);
  EXPECT_TRUE(settings.look.isOpaque);
  EXPECT_TRUE(settings.look.hasClearBackground);
  EXPECT_EQ(settings.look.autoresizingMask, 18U);
  EXPECT_TRUE(settings.isUserInteractionEnabled);
  EXPECT_THAT(host.ui->animations, ElementsAre(300ms));
  EXPECT_EQ(View().alpha, 1);
}

TEST_F(FloatingButton, ShowsAPictureOf150By150Pixels) {
  Display();
  const std::string& image = View().settings.image;
  ASSERT_GT(image.size(), 33U);
  EXPECT_EQ(image.substr(0, 8), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(image.substr(12, 4), "IHDR");
  EXPECT_EQ(NumberAt(image, 16), 150U);
  EXPECT_EQ(NumberAt(image, 20), 150U);
  EXPECT_EQ(image.substr(image.size() - 8, 4), "IEND");
}

TEST_F(FloatingButton, FollowsTheFingerOutOfSightToo) {
  Display();
  const auto pan = View().RecognizerOf<FakePanGestureRecognizer>();
  ASSERT_NE(pan, nullptr);
  pan->Move({-10, 20});
  EXPECT_EQ(View().frame, (Rect{290, 396, 60, 60}));
  EXPECT_EQ(pan->TranslationInSuperview(), (Point{0, 0}));
  pan->Move({1000, -5000});
  EXPECT_EQ(View().frame, (Rect{1290, -4604, 60, 60}));
  EXPECT_THAT(calls, ElementsAre("pan", "pan"));
}

TEST_F(FloatingButton, TellsASingleTap) {
  Display();
  const auto tap = View().RecognizerOf<FakeTapGestureRecognizer>();
  ASSERT_NE(tap, nullptr);
  EXPECT_EQ(tap->requiredTaps, 1);
  tap->Tap();
  EXPECT_THAT(calls, ElementsAre("tap"));
}

TEST_F(FloatingButton, NeedsNoListener) {
  button = service->CreateFloatingButton(nullptr);
  Display();
  View().RecognizerOf<FakeTapGestureRecognizer>()->Tap();
  View().RecognizerOf<FakePanGestureRecognizer>()->Move({1, 1});
  EXPECT_EQ(View().frame.x, 301);
}

TEST_F(FloatingButton, StaysInFrontOfWhatComesLater) {
  Display();
  EXPECT_EQ(Window().timesBroughtToFront, 1);
  Window().AddSubview(host.ui->CreateImageView({}));
  EXPECT_NE(Window().subviews.back(), host.ui->imageViews[0]);
  host.mainQueue->Advance(199ms);
  EXPECT_NE(Window().subviews.back(), host.ui->imageViews[0]);
  host.mainQueue->Advance(1ms);
  EXPECT_EQ(Window().subviews.back(), host.ui->imageViews[0]);
  host.mainQueue->Advance(400ms);
  EXPECT_EQ(Window().timesBroughtToFront, 4);
}

TEST_F(FloatingButton, ReturnsToTheMiddleOfTheHeightAfterARotation) {
  Display();
  View().RecognizerOf<FakePanGestureRecognizer>()->Move({-100, 100});
  Window().frame = {0, 0, 812, 375};
  host.ui->Rotate();
  EXPECT_EQ(View().frame, (Rect{200, 157.5, 60, 60}));
}

TEST_F(FloatingButton, IsTakenAwayWithItsTimer) {
  Display();
  EXPECT_EQ(host.mainQueue->TimerCount(), 1U);
  button->Remove();
  EXPECT_THAT(Window().subviews, SizeIs(1));
  host.mainQueue->RunAll();
  EXPECT_THAT(Window().subviews, IsEmpty());
  EXPECT_EQ(host.mainQueue->TimerCount(), 0U);
  EXPECT_EQ(host.ui->RotationWatchCount(), 0U);
}

TEST_F(FloatingButton, IsThereOnceWhenItIsDisplayedTwice) {
  Display();
  Display();
  EXPECT_THAT(Window().subviews, ElementsAre(host.ui->imageViews[1]));
  EXPECT_EQ(host.mainQueue->TimerCount(), 1U);
  EXPECT_EQ(host.ui->RotationWatchCount(), 1U);
}

TEST_F(FloatingButton, GoesFromTheScreenWithItsOwner) {
  Display();
  button.reset();
  host.mainQueue->RunAll();
  EXPECT_THAT(Window().subviews, IsEmpty());
  EXPECT_EQ(host.mainQueue->TimerCount(), 0U);
}

TEST_F(FloatingButton, TakesNoPartInTheRuleOfOneMessage) {
  Display();
  EXPECT_FALSE(service->IsMessageDisplayed());
  service->ShowAlert("Title", "Message", "Yes", "No", nullptr);
  host.mainQueue->RunAll();
  Display();
  EXPECT_TRUE(service->IsMessageDisplayed());
}

TEST_F(FloatingButton, IsLoggedWhenItCannotBeBuilt) {
  host.ui->fails = true;
  Display();
  log.ExpectLine(LogLevel::Debug, "FloatingButton", "Unable to display (The device failed.)");
  EXPECT_THAT(Window().subviews, IsEmpty());
}

TEST_F(FloatingButton, IsLoggedWhenItCannotBeRemoved) {
  Display();
  View().cannotBeRemoved = true;
  button->Remove();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "FloatingButton", "Unable to remove (The device failed.)");
}

TEST_F(FloatingButton, MayBeRemovedWithoutBeingDisplayed) {
  button->Remove();
  EXPECT_EQ(host.mainQueue->WaitingCount(), 0U);
}

}  // namespace
