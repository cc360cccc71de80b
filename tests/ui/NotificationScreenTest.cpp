#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "QEXCore_gtk/Gtk.h"
#include "platform/linux/GlibPointers.h"
#include "support/FakeNotificationDaemon.h"
#include "ui/ScreenFixture.h"

namespace {

using namespace std::chrono_literals;

using TestSupport::Until;

// The desktop's notification service on the session's bus.
class NotificationOnScreen : public TestSupport::ScreenFixture {
 protected:
  void Show(const std::string& identifier, const std::string& text, std::chrono::seconds delay) {
    service->ShowLocalNotification(identifier, text, "", "", delay, "", 0s,
                                   R"({"krv_deeplink": "shop://orders/7"})");
  }

  bool UntilShown(std::size_t count) {
    return Until([=, this] { return daemon.AllShown().size() == count; });
  }

  static Platform::NotificationRequest Request(const std::string& identifier, double seconds) {
    Platform::NotificationRequest request;
    request.identifier = identifier;
    request.content.body = "Your shoes are on their way";
    request.content.userInfo = {{"krv_deeplink", "shop://orders/7"}};
    request.trigger = Platform::TimeIntervalTrigger{seconds};
    return request;
  }

  // The window is closed to the eye until something brings it back.
  bool Hide() {
    gtk_widget_set_visible(GTK_WIDGET(window), FALSE);
    return Until([this] { return gtk_widget_get_mapped(GTK_WIDGET(window)) == FALSE; });
  }

  TestSupport::FakeNotificationDaemon daemon{std::getenv("DBUS_SESSION_BUS_ADDRESS")};
};

TEST_F(NotificationOnScreen, IsShownNow) {
  Show("order", "Your shoes are on their way", 0s);
  ASSERT_TRUE(UntilShown(1));
  EXPECT_EQ(daemon.AllShown().back().body, "Your shoes are on their way");
}

TEST_F(NotificationOnScreen, IsShownLater) {
  const auto begin = std::chrono::steady_clock::now();
  Show("later", "Your shoes are there", 1s);
  ASSERT_TRUE(UntilShown(1));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 900ms);
}

TEST_F(NotificationOnScreen, TakesThePlaceOfAnEarlierOne) {
  Show("place", "First", 0s);
  ASSERT_TRUE(UntilShown(1));
  Show("place", "Second", 0s);
  ASSERT_TRUE(UntilShown(2));
  EXPECT_EQ(daemon.AllShown()[1].replaces, daemon.AllShown()[0].id);
}

TEST_F(NotificationOnScreen, IsShownAfterARestart) {
  Gtk::CreateHost(screen.application).userNotificationCenter->Add(Request("restart", 1));
  const auto host = Gtk::CreateHost(screen.application);
  host.userNotificationCenter->ResumePending();
  EXPECT_TRUE(UntilShown(1));
}

TEST_F(NotificationOnScreen, BringsTheApplicationBackAndHandsItsInformationOver) {
  std::optional<Platform::Value> opened;
  Platform::HostOptions options;
  options.notificationOpened = [&opened](const Platform::Value& userInfo) { opened = userInfo; };
  const auto host = Gtk::CreateHost(screen.application, options);
  host.userNotificationCenter->Add(Request("click", 0));
  ASSERT_TRUE(UntilShown(1));
  ASSERT_TRUE(Hide());
  daemon.Invoke(daemon.AllShown().back().id, "default");
  EXPECT_TRUE(Until([&] { return opened.has_value() && IsActive(); }));
  EXPECT_EQ(opened->Get("krv_deeplink").AsString(), "shop://orders/7");
}

TEST_F(NotificationOnScreen, ActivatesAnApplicationThatHasNoWindow) {
  int activations = 0;
  const Platform::GObjectPointer<GtkApplication> other(
      gtk_application_new("com.example.WithoutWindows", G_APPLICATION_NON_UNIQUE));
  g_application_register(G_APPLICATION(other.get()), nullptr, nullptr);
  g_signal_connect(other.get(), "activate", G_CALLBACK(+[](GtkApplication*, gpointer count) {
                     ++*static_cast<int*>(count);
                   }),
                   &activations);
  const auto host = Gtk::CreateHost(other.get());
  host.userNotificationCenter->Add(Request("activate", 0));
  ASSERT_TRUE(UntilShown(1));
  daemon.Invoke(daemon.AllShown().back().id, "default");
  EXPECT_TRUE(Until([&] { return activations == 1; }));
}

}  // namespace
