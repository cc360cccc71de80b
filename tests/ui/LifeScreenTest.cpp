#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "platform/gtk/Gtk4Life.h"
#include "platform/headless/InProcessNotificationCenter.h"
#include "ui/ScreenFixture.h"

namespace {

using Platform::ApplicationState;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Until;
using Velmora::AppState;

class LifeOnScreen : public TestSupport::ScreenFixture {
 protected:
  LifeOnScreen() { service->RegisterAppStateListener(listener); }
  ~LifeOnScreen() override { service->UnregisterAppStateListener(listener); }

  static ApplicationState State() { return Platform::Host::Current()->application->State(); }

  const std::shared_ptr<TestSupport::StateListener> listener =
      std::make_shared<TestSupport::StateListener>(calls, "app");
};

TEST_F(LifeOnScreen, TellsOfTheBackgroundWhenItsWindowIsMinimizedAndOfItsReturn) {
  EXPECT_EQ(service->GetAppState(), AppState::Foreground);
  TestSupport::Minimize(window);
  EXPECT_TRUE(Until([this] { return calls.size() == 1; }));
  EXPECT_EQ(service->GetAppState(), AppState::Background);
  EXPECT_EQ(State(), ApplicationState::Background);
  TestSupport::Restore(window);
  EXPECT_TRUE(Until([this] { return calls.size() == 2; }));
  EXPECT_EQ(service->GetAppState(), AppState::Foreground);
  EXPECT_TRUE(Until([] { return State() == ApplicationState::Active; }));
  EXPECT_THAT(calls, ElementsAre("app background", "app foreground"));
}

TEST_F(LifeOnScreen, TellsOfTheBackgroundWhenItsWindowIsHidden) {
  gtk_widget_set_visible(GTK_WIDGET(window), FALSE);
  EXPECT_TRUE(Until([this] { return calls.size() == 1; }));
  gtk_window_present(window);
  EXPECT_TRUE(Until([this] { return calls.size() == 2; }));
  EXPECT_THAT(calls, ElementsAre("app background", "app foreground"));
}

TEST_F(LifeOnScreen, IsInactiveBeforeItIsInTheBackground) {
  std::vector<ApplicationState> states;
  gtk_widget_set_visible(GTK_WIDGET(window), FALSE);
  EXPECT_TRUE(Until([&] {
    if (states.empty() || states.back() != State()) states.push_back(State());
    return states.back() == ApplicationState::Background;
  }));
  ASSERT_GE(states.size(), 2U);
  EXPECT_EQ(states[states.size() - 2], ApplicationState::Inactive);
  gtk_window_present(window);
  EXPECT_TRUE(Until([this] { return IsActive(); }));
}

TEST_F(LifeOnScreen, TakesAnAlertOfItsOwnForNoBackground) {
  service->ShowAlert("Title", "Message", "Yes", "No", nullptr);
  ASSERT_TRUE(Until([this] { return TestSupport::DialogOf(window) != nullptr; }));
  TestSupport::LetPass(std::chrono::milliseconds(300));
  TestSupport::PressKey("Escape");
  ASSERT_TRUE(Until([this] { return IsActive(); }));
  TestSupport::LetPass(std::chrono::milliseconds(300));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(LifeOnScreen, TakesAnotherWindowOfItsOwnForNoBackground) {
  auto* other = GTK_WINDOW(gtk_application_window_new(screen.application));
  gtk_window_present(other);
  ASSERT_TRUE(Until([&] { return gtk_window_is_active(other) != FALSE; }));
  EXPECT_EQ(Platform::Host::Current()->application->Windows().size(), 2U);
  EXPECT_EQ(Platform::Host::Current()->application->KeyWindow()->Frame(),
            Platform::Host::Current()->application->Windows().front()->Frame());
  gtk_window_destroy(other);
  ASSERT_TRUE(Until([this] { return IsActive(); }));
  TestSupport::LetPass(std::chrono::milliseconds(300));
  EXPECT_THAT(calls, IsEmpty());
}

// The beginning of an application's life, of which a process has one.
class LaunchOnScreen : public TestSupport::ScreenFixture {
 protected:
  LaunchOnScreen() {
    for (const char* name :
         {Platform::kDidFinishLaunchingNotification, Platform::kDidEnterBackgroundNotification,
          Platform::kWillEnterForegroundNotification}) {
      observations.push_back(center->AddObserver(
          name, [this](const Platform::Notification& notice) { calls.push_back(notice.name); }));
    }
  }

  const std::shared_ptr<Platform::InProcessNotificationCenter> center =
      std::make_shared<Platform::InProcessNotificationCenter>();
  std::vector<std::unique_ptr<Platform::NotificationObservation>> observations;
};

TEST_F(LaunchOnScreen, IsToldOnceTheLoopTurns) {
  const Platform::Gtk4Life life(screen.application, center);
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_THAT(calls, ElementsAre(Platform::kDidFinishLaunchingNotification));
  EXPECT_EQ(life.State(), ApplicationState::Active);
}

TEST_F(LaunchOnScreen, IsNotToldBeforeTheApplicationHasStarted) {
  const Platform::GObjectPointer<GtkApplication> other(
      gtk_application_new("com.example.Later", G_APPLICATION_NON_UNIQUE));
  const Platform::Gtk4Life life(other.get(), center);
  TestSupport::LetPass(std::chrono::milliseconds(50));
  EXPECT_THAT(calls, IsEmpty());
  g_application_register(G_APPLICATION(other.get()), nullptr, nullptr);
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_THAT(calls, ElementsAre(Platform::kDidFinishLaunchingNotification));
}

TEST_F(LaunchOnScreen, IsOneIntoTheBackgroundWhenNothingIsSeen) {
  gtk_widget_set_visible(GTK_WIDGET(window), FALSE);
  const Platform::Gtk4Life life(screen.application, center);
  EXPECT_TRUE(Until([this] { return !calls.empty(); }));
  EXPECT_EQ(life.State(), ApplicationState::Background);
  gtk_window_present(window);
  EXPECT_TRUE(Until([this] { return calls.size() == 2; }));
  EXPECT_THAT(calls, ElementsAre(Platform::kDidFinishLaunchingNotification,
                                 Platform::kWillEnterForegroundNotification));
  EXPECT_TRUE(Until([&] { return life.State() == ApplicationState::Active; }));
}

}  // namespace
