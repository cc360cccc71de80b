#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Host.h"
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
  EXPECT_EQ(State(), ApplicationState::Active);
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

}  // namespace
