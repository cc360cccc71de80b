#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "ui/ScreenFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using TestSupport::Until;

constexpr int kSize = 60;
constexpr int kMargin = 15;

class ButtonOnScreen : public TestSupport::ScreenFixture {
 protected:
  ButtonOnScreen() {
    floating->Display();
    EXPECT_TRUE(Until([this] { return Picture() != nullptr && gtk_widget_get_width(Picture()); }));
    EXPECT_TRUE(Until([this] { return gtk_widget_get_opacity(Picture()) == 1; }));
  }
  ~ButtonOnScreen() override {
    floating->Remove();
    EXPECT_TRUE(Until([this] { return Picture() == nullptr; }));
  }

  GtkWidget* Picture() const { return TestSupport::FindByType(GTK_WIDGET(window), "GtkPicture"); }

  struct Place {
    double x = 0;
    double y = 0;
    friend bool operator==(const Place&, const Place&) = default;
  };
  Place PlaceOf(GtkWidget* widget) const {
    Place place;
    gtk_widget_translate_coordinates(widget, gtk_window_get_child(window), 0, 0, &place.x,
                                     &place.y);
    return place;
  }
  bool UntilAt(const Place& place) {
    return Until([&] {
      const Place now = PlaceOf(Picture());
      return std::abs(now.x - place.x) <= 1 && std::abs(now.y - place.y) <= 1;
    });
  }
  Place HomePlace() const {
    return {static_cast<double>(ContentWidth() - kSize - kMargin), (ContentHeight() - kSize) / 2.0};
  }

  const std::shared_ptr<Velmora::FloatingButtonInterface> floating =
      service->CreateFloatingButton(std::make_shared<TestSupport::ButtonListener>(calls));
};

TEST_F(ButtonOnScreen, AppearsAtTheRightEdgeInTheMiddle) {
  EXPECT_EQ(PlaceOf(Picture()), HomePlace());
  EXPECT_EQ(gtk_widget_get_width(Picture()), kSize);
  EXPECT_EQ(gtk_widget_get_height(Picture()), kSize);
  TestSupport::Photograph("button");
}

TEST_F(ButtonOnScreen, TellsOfATap) {
  TestSupport::Click(Picture());
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_THAT(calls, ElementsAre("tap"));
  EXPECT_EQ(PlaceOf(Picture()), HomePlace());
}

TEST_F(ButtonOnScreen, TellsOfEachOfTwoTaps) {
  TestSupport::Click(Picture());
  TestSupport::Click(Picture());
  EXPECT_TRUE(Until([this] { return calls.size() == 2; }));
  EXPECT_THAT(calls, ElementsAre("tap", "tap"));
}

TEST_F(ButtonOnScreen, FollowsADragThatIsNoTap) {
  const Place from = HomePlace();
  TestSupport::Drag(Picture(), 30, 30, 30 - 150, 30 + 100);
  EXPECT_TRUE(UntilAt({from.x - 150, from.y + 100}));
  TestSupport::LetPass(std::chrono::milliseconds(50));
  EXPECT_THAT(calls, testing::Not(testing::IsEmpty()));
  EXPECT_THAT(calls, Each("pan"));
  TestSupport::Photograph("button-dragged");
  // It is a button there, too.
  calls.clear();
  TestSupport::Click(Picture());
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_THAT(calls, ElementsAre("tap"));
}

TEST_F(ButtonOnScreen, TakesAMovementWithinTheThresholdForATap) {
  TestSupport::Drag(Picture(), 30, 30, 33, 32);
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_THAT(calls, ElementsAre("tap"));
  EXPECT_EQ(PlaceOf(Picture()), HomePlace());
}

TEST_F(ButtonOnScreen, CanBeDraggedOutOfSight) {
  const Place from = HomePlace();
  TestSupport::Drag(Picture(), 30, 30, 30 + 200, 30);
  EXPECT_TRUE(UntilAt({from.x + 200, from.y}));
  EXPECT_THAT(calls, Each("pan"));
}

TEST_F(ButtonOnScreen, StaysAtItsEdgeWhenTheWindowIsResized) {
  ASSERT_TRUE(Resize(330, 700));
  EXPECT_TRUE(UntilAt(HomePlace()));
  EXPECT_EQ(gtk_widget_get_width(Picture()), kSize);
}

TEST_F(ButtonOnScreen, ComesBackToTheMiddleWhenTheWindowIsTurned) {
  TestSupport::Drag(Picture(), 30, 30, 30, 30 - 200);
  EXPECT_TRUE(UntilAt({HomePlace().x, HomePlace().y - 200}));
  ASSERT_TRUE(Resize(720, 400));
  EXPECT_TRUE(UntilAt(HomePlace()));
  TestSupport::Photograph("button-landscape");
}

TEST_F(ButtonOnScreen, LeavesTheContentToItsUser) {
  TestSupport::Click(button);
  EXPECT_TRUE(Until([this] { return buttonClicks == 1; }));
  TestSupport::Click(entry);
  TestSupport::TypeText("abc");
  EXPECT_TRUE(UntilEntered("abc"));
  EXPECT_THAT(calls, testing::IsEmpty());
}

TEST_F(ButtonOnScreen, StaysInFrontOfAMessage) {
  const auto listener = std::make_shared<TestSupport::FullscreenListener>(calls);
  const auto message =
      service->CreateFullscreenMessage("<body style='background:#2060C0'></body>", listener);
  message->Show();
  ASSERT_TRUE(Until([this] {
    return TestSupport::ColourAt(gtk_window_get_child(window), 20, 300) == 0x2060C0 &&
           gtk_widget_get_next_sibling(Picture()) == nullptr;
  }));
  TestSupport::Photograph("button-over-message");
  calls.clear();
  TestSupport::Click(Picture());
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_THAT(calls, ElementsAre("tap"));
  message->Remove();
  EXPECT_TRUE(Until([this] { return calls.back() == "dismiss"; }));
}

TEST_F(ButtonOnScreen, LeavesTheWindowAsItWas) {
  floating->Remove();
  EXPECT_TRUE(Until([this] { return gtk_window_get_child(window) == content; }));
  floating->Display();
  EXPECT_TRUE(Until([this] { return Picture() != nullptr; }));
}

}  // namespace
