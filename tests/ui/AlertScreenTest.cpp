#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "ui/ScreenFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::AlertListener;
using TestSupport::DialogOf;
using TestSupport::LogLevel;
using TestSupport::Until;

class AlertOnScreen : public TestSupport::ScreenFixture {
 protected:
  // Shows an alert and waits until it is in front.
  void Show(const std::string& positive, const std::string& negative) {
    service->ShowAlert("Free shipping", "Today only, on every order of shoes.", positive, negative,
                       listener);
    ASSERT_TRUE(Until([this] { return DialogOf(window) != nullptr; }));
    EXPECT_THAT(calls, ElementsAre("alert show*"));
  }

  GtkWidget* Button(const std::string& label) {
    return TestSupport::FindButton(GTK_WIDGET(DialogOf(window)), label);
  }

  bool UntilGone() {
    return Until([this] { return DialogOf(window) == nullptr && IsActive(); });
  }

  const std::shared_ptr<AlertListener> listener = std::make_shared<AlertListener>(calls, "alert");
};

TEST_F(AlertOnScreen, TellsOfThePositiveButton) {
  Show("Order", "Later");
  TestSupport::Photograph("alert");
  TestSupport::Click(Button("Order"));
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert positive*", "alert dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(AlertOnScreen, TellsOfTheNegativeButton) {
  Show("Order", "Later");
  TestSupport::Click(Button("Later"));
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert negative*", "alert dismiss"));
}

TEST_F(AlertOnScreen, TakesEscapeForTheNegativeButton) {
  Show("Order", "Later");
  TestSupport::PressKey("Escape");
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert negative*", "alert dismiss"));
}

TEST_F(AlertOnScreen, TakesReturnForThePositiveButton) {
  Show("Order", "Later");
  TestSupport::PressKey("Return");
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert positive*", "alert dismiss"));
}

TEST_F(AlertOnScreen, HasOneButtonWhenOneTextIsEmpty) {
  Show("Order", "");
  EXPECT_EQ(Button("Later"), nullptr);
  TestSupport::PressKey("Escape");
  TestSupport::LetPass(std::chrono::milliseconds(100));
  EXPECT_THAT(calls, ElementsAre("alert show*"));
  TestSupport::Click(Button("Order"));
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert positive*", "alert dismiss"));
}

TEST_F(AlertOnScreen, IsDismissedWithEscapeWhenItHasNoButton) {
  Show("", "");
  TestSupport::Photograph("alert-without-buttons");
  TestSupport::PressKey("Escape");
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(AlertOnScreen, IsDismissedWhenItsWindowGoes) {
  Show("Order", "Later");
  auto* other = gtk_application_window_new(screen.application);
  gtk_window_present(GTK_WINDOW(other));
  gtk_window_destroy(window);
  window = GTK_WINDOW(other);
  EXPECT_TRUE(Until([this] { return calls.size() == 2; }));
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert dismiss"));
}

TEST_F(AlertOnScreen, KeepsASecondAlertAway) {
  Show("Order", "Later");
  const auto second = std::make_shared<AlertListener>(calls, "second");
  service->ShowAlert("Second", "", "Yes", "", second);
  log.ExpectLine(LogLevel::Debug, "AlertMessage",
                 "Failed to show alert, another message is displayed at this time");
  TestSupport::Click(Button("Order"));
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert positive*", "alert dismiss"));
}

TEST_F(AlertOnScreen, IsPresentedByTheDialogThatIsOpen) {
  auto* dialog = gtk_window_new();
  gtk_window_set_transient_for(GTK_WINDOW(dialog), window);
  gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
  gtk_window_set_default_size(GTK_WINDOW(dialog), 300, 200);
  gtk_window_present(GTK_WINDOW(dialog));
  ASSERT_TRUE(Until([&] { return DialogOf(window) == GTK_WINDOW(dialog); }));
  service->ShowAlert("Title", "Message", "Yes", "No", listener);
  ASSERT_TRUE(Until([&] { return DialogOf(GTK_WINDOW(dialog)) != nullptr; }));
  TestSupport::PressKey("Escape");
  EXPECT_TRUE(Until([&] { return DialogOf(window) == GTK_WINDOW(dialog); }));
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert negative*", "alert dismiss"));
  gtk_window_destroy(GTK_WINDOW(dialog));
}

TEST_F(AlertOnScreen, ShowsTextsOfAnyKindAndSize) {
  service->ShowAlert("A title & <b>", std::string(5'000'000, 'x'),
                     "_Yes & no " + std::string(5'000, 'y'), "No", listener);
  ASSERT_TRUE(Until([this] { return DialogOf(window) != nullptr; }));
  TestSupport::Photograph("alert-with-long-texts");
  TestSupport::Click(Button("No"));
  EXPECT_TRUE(UntilGone());
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert negative*", "alert dismiss"));
}

TEST_F(AlertOnScreen, LeavesTheFocusWhereItWas) {
  Show("Order", "Later");
  TestSupport::PressKey("Escape");
  EXPECT_TRUE(UntilGone());
  TestSupport::TypeText("abc");
  EXPECT_TRUE(
      Until([this] { return std::string(gtk_editable_get_text(GTK_EDITABLE(entry))) == "abc"; }));
}

}  // namespace
