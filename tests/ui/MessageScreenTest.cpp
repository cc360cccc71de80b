#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/gtk/WeakObject.h"
#include "ui/MessageFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::Until;

class MessageOnScreen : public TestSupport::MessageFixture {};

TEST_F(MessageOnScreen, CoversTheContentUntilItIsRemoved) {
  const auto message = Show(BluePage("<h1 style='padding:200px 20px;color:white'>Sale</h1>"));
  TestSupport::Photograph("message");
  EXPECT_NE(gtk_window_get_child(window), content);
  Remove(message);
  EXPECT_EQ(gtk_window_get_child(window), content);
  EXPECT_EQ(WebView(), nullptr);
  EXPECT_THAT(calls, ElementsAre("show*", "dismiss"));
}

TEST_F(MessageOnScreen, SlidesInFromBelowAndOutAgain) {
  const auto message = Create(BluePage());
  message->Show();
  std::vector<double> places;
  const auto watch = [&] {
    GtkWidget* view = WebView();
    if (view == nullptr || gtk_widget_get_height(view) == 0) return;  // not laid out yet
    double x = 0;
    double y = 0;
    gtk_widget_translate_coordinates(view, gtk_window_get_child(window), 0, 0, &x, &y);
    if (places.empty() || places.back() != y) places.push_back(y);
  };
  ASSERT_TRUE(Until([&] {
    watch();
    return !places.empty() && places.back() == 0;
  }));
  EXPECT_EQ(places.front(), ContentHeight());
  EXPECT_GT(places.size(), 4U);
  EXPECT_TRUE(std::is_sorted(places.rbegin(), places.rend()));
  places.clear();
  message->Remove();
  EXPECT_TRUE(Until([&] {
    watch();
    return WebView() == nullptr;
  }));
  EXPECT_GT(places.size(), 4U);
  EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
  EXPECT_TRUE(UntilHeard("dismiss"));
}

TEST_F(MessageOnScreen, LetsTheContentBeSeenWhereItPaintsNothing) {
  const auto message = Create(
      "<div style='position:absolute;left:10%;right:10%;top:50%;height:20%;background:#2060C0;"
      "color:white;font:20px sans-serif;padding:12px'>A message that leaves room</div>");
  const std::uint32_t bare = TestSupport::ColourAt(content, 10, 300);
  message->Show();
  ASSERT_TRUE(Until([this] {
    return TestSupport::ColourAt(gtk_window_get_child(window), 50, ContentHeight() * 0.68) == kBlue;
  }));
  TestSupport::Photograph("message-transparent");
  EXPECT_EQ(TestSupport::ColourAt(gtk_window_get_child(window), 10, 300), bare);
  Remove(message);
}

TEST_F(MessageOnScreen, LeavesTheFocusWhereItWas) {
  TestSupport::TypeText("ab");
  const auto message = Show(BluePage());
  TestSupport::TypeText("cd");
  EXPECT_TRUE(
      Until([this] { return std::string(gtk_editable_get_text(GTK_EDITABLE(entry))) == "abcd"; }));
  // A click takes the focus, as long as the message is there.
  ClickTarget();
  EXPECT_TRUE(Until([this] { return gtk_window_get_focus(window) == WebView(); }));
  Remove(message);
  TestSupport::TypeText("ef");
  EXPECT_TRUE(UntilEntered("abcdef"));
}

TEST_F(MessageOnScreen, TakesTheClicksWhileItIsThere) {
  const auto message = Show(BluePage());
  TestSupport::Click(button);
  TestSupport::LetPass(std::chrono::milliseconds(100));
  EXPECT_EQ(buttonClicks, 0);
  Remove(message);
  TestSupport::Click(button);
  EXPECT_TRUE(Until([this] { return buttonClicks == 1; }));
}

TEST_F(MessageOnScreen, FitsTheWindowWhenThatIsResizedOrTurned) {
  const auto message = Show(BluePage());
  ASSERT_TRUE(Resize(420, 700));
  EXPECT_TRUE(UntilColour(kBlue));
  ASSERT_TRUE(Resize(700, 420));
  EXPECT_TRUE(UntilColour(kBlue));
  TestSupport::Photograph("message-landscape");
  EXPECT_EQ(gtk_widget_get_width(WebView()), 700);
  EXPECT_EQ(gtk_widget_get_height(WebView()), 420);
  Remove(message);
}

TEST_F(MessageOnScreen, LeavesTheHeaderBarFree) {
  auto* other = GTK_WINDOW(gtk_application_window_new(screen.application));
  gtk_window_set_titlebar(other, gtk_header_bar_new());
  gtk_window_set_default_size(other, 400, 500);
  content = gtk_label_new("Content");
  gtk_window_set_child(other, content);
  gtk_window_present(other);
  gtk_window_destroy(window);
  window = other;
  ASSERT_TRUE(Until([this] { return IsActive() && ContentHeight() > 0; }));
  const int height = ContentHeight();
  const auto message = Show(BluePage());
  TestSupport::Photograph("message-below-header-bar");
  EXPECT_EQ(ContentHeight(), height);
  EXPECT_EQ(gtk_widget_get_height(WebView()), height);
  Remove(message);
  EXPECT_TRUE(Until([&] { return ContentHeight() == height; }));
}

TEST_F(MessageOnScreen, StaysWhenTheApplicationPutsOtherContentIntoItsWindow) {
  const auto message = Show(BluePage());
  GtkWidget* other = gtk_label_new("Other content");
  gtk_window_set_child(window, other);
  content = other;
  EXPECT_TRUE(Until([&] { return gtk_widget_get_mapped(other) && IsAllOver(kBlue); }));
  Remove(message);
  EXPECT_EQ(gtk_window_get_child(window), other);
}

TEST_F(MessageOnScreen, IsDismissedWhenItsWindowGoes) {
  const auto message = Show(BluePage());
  auto* other = gtk_application_window_new(screen.application);
  gtk_window_present(GTK_WINDOW(other));
  gtk_window_destroy(window);
  window = GTK_WINDOW(other);
  EXPECT_TRUE(UntilHeard("dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(MessageOnScreen, LeavesNothingBehind) {
  auto message = Show(BluePage());
  const std::weak_ptr<Velmora::FullScreenMessageUiInterface> kept = message;
  const Platform::WeakObject<GtkWidget> view(WebView());
  Remove(message);
  message = nullptr;
  listener->lastMessage.reset();
  EXPECT_TRUE(Until([&] { return kept.expired() && view.Get() == nullptr; }));
}

TEST_F(MessageOnScreen, KeepsAlertsAndOtherMessagesAway) {
  const auto message = Show(BluePage());
  service->ShowAlert("Title", "Message", "Yes", "No",
                     std::make_shared<TestSupport::AlertListener>(calls, "alert"));
  log.ExpectLine(LogLevel::Debug, "AlertMessage",
                 "Failed to show alert, another message is displayed at this time");
  EmptyMainQueue();
  Create(BluePage())->Show();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Full screen message couldn't be displayed, another message is displayed at this "
                 "time");
  Remove(message);
  EXPECT_EQ(TestSupport::DialogOf(window), nullptr);
  EXPECT_THAT(calls, ElementsAre("show*", "dismiss"));
}

TEST_F(MessageOnScreen, IsKeptAwayByAnAlert) {
  service->ShowAlert("Title", "Message", "Yes", "No",
                     std::make_shared<TestSupport::AlertListener>(calls, "alert"));
  ASSERT_TRUE(Until([this] { return TestSupport::DialogOf(window) != nullptr; }));
  Create(BluePage())->Show();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Full screen message couldn't be displayed, another message is displayed at this "
                 "time");
  TestSupport::PressKey("Escape");
  EXPECT_TRUE(UntilHeard("alert dismiss"));
  EXPECT_THAT(calls, ElementsAre("alert show*", "alert negative*", "alert dismiss"));
}

TEST_F(MessageOnScreen, FindsWhatItNamesInTheBundle) {
  screen.folder.WriteFile("look.css", "body { background: #2060C0; }");
  const auto message = Show("<link rel='stylesheet' href='look.css'>");
  Remove(message);
}

TEST_F(MessageOnScreen, OpensUrlsWithTheProgramOfTheirScheme) {
  const auto message = Show(BluePage());
  const std::string url = "qex-screen:orders?id=7&note=a%20b";
  message->OpenUrl(url);
  EXPECT_TRUE(Until([this] { return std::filesystem::exists(screen.openedUrl); }));
  EXPECT_EQ(TestSupport::ReadFileBytes(screen.openedUrl), url);
  std::filesystem::remove(screen.openedUrl);
  EXPECT_TRUE(service->ShowUrl(url));
  EXPECT_TRUE(Until([this] { return std::filesystem::exists(screen.openedUrl); }));
  EXPECT_FALSE(service->ShowUrl("qex-unknown:orders"));
  EXPECT_FALSE(service->ShowUrl(""));
  Remove(message);
}

TEST_F(MessageOnScreen, ShowsManyOneAfterTheOther) {
  for (int i = 0; i < 3; ++i) {
    calls.clear();
    Remove(Show(BluePage()));
  }
  EXPECT_EQ(gtk_window_get_child(window), content);
}

}  // namespace
