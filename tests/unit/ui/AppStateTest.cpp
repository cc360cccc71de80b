#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Application.h"
#include "UiFixture.h"
#include "services/ui/KRVSystemNotificationHandler.h"

namespace {

using Platform::ApplicationState;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::StateListener;
using Velmora::AppState;

// A handler of the test's own, which observes the process's notices.
class AppStateObserver : public TestSupport::UiFixture {
 protected:
  AppStateObserver() { handler.init(); }

  void Post(const std::string& name, const Platform::Value& userInfo = {}) {
    host.notificationCenter->Post({name, userInfo});
  }

  std::shared_ptr<StateListener> Register(const std::string& name) {
    auto listener = std::make_shared<StateListener>(calls, name);
    handler.registerListener(listener);
    return listener;
  }

  KRVSystemNotificationHandler handler;
};

TEST_F(AppStateObserver, IsInTheForegroundBeforeAnyNotice) {
  EXPECT_EQ(handler.getAppState(), AppState::Foreground);
  EXPECT_EQ(handler.getNumListeners(), 0U);
}

TEST_F(AppStateObserver, FollowsTheApplication) {
  Register("a");
  Post(Platform::kDidFinishLaunchingNotification);
  EXPECT_EQ(handler.getAppState(), AppState::Foreground);
  Post(Platform::kDidEnterBackgroundNotification);
  EXPECT_EQ(handler.getAppState(), AppState::Background);
  Post(Platform::kWillEnterForegroundNotification);
  EXPECT_EQ(handler.getAppState(), AppState::Foreground);
  EXPECT_THAT(calls, ElementsAre("a foreground", "a background", "a foreground"));
}

TEST_F(AppStateObserver, ObservesTheNoticesByTheirNames) {
  EXPECT_STREQ(Platform::kDidFinishLaunchingNotification,
               "UIApplicationDidFinishLaunchingNotification");
  EXPECT_STREQ(Platform::kDidEnterBackgroundNotification,
               "UIApplicationDidEnterBackgroundNotification");
  EXPECT_STREQ(Platform::kWillEnterForegroundNotification,
               "UIApplicationWillEnterForegroundNotification");
  EXPECT_STREQ(Platform::kLaunchOptionsLocationKey, "UIApplicationLaunchOptionsLocationKey");
  EXPECT_STREQ(Platform::kLaunchOptionsNewsstandDownloadsKey,
               "UIApplicationLaunchOptionsNewsstandDownloadsKey");
}

TEST_F(AppStateObserver, IgnoresALaunchForAChangeOfPlace) {
  Register("a");
  handler.handleAppNotification({Platform::kDidEnterBackgroundNotification, {}});
  calls.clear();
  handler.handleAppNotification({Platform::kDidFinishLaunchingNotification,
                                 {{Platform::kLaunchOptionsLocationKey, true},
                                  {Platform::kLaunchOptionsNewsstandDownloadsKey, true}}});
  log.ExpectLine(LogLevel::Debug, "AppState",
                 "ignoring launch notification (triggered by location change)");
  EXPECT_EQ(handler.getAppState(), AppState::Background);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(AppStateObserver, IgnoresALaunchForADownload) {
  Register("a");
  handler.handleAppNotification({Platform::kDidEnterBackgroundNotification, {}});
  calls.clear();
  handler.handleAppNotification({Platform::kDidFinishLaunchingNotification,
                                 {{Platform::kLaunchOptionsNewsstandDownloadsKey, "download"}}});
  log.ExpectLine(LogLevel::Debug, "AppState",
                 "ignoring launch notification (triggered by a Newsstand download request)");
  EXPECT_EQ(handler.getAppState(), AppState::Background);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(AppStateObserver, HeedsTheKeysInEveryNotice) {
  handler.handleAppNotification(
      {Platform::kDidEnterBackgroundNotification, {{Platform::kLaunchOptionsLocationKey, true}}});
  log.ExpectLine(LogLevel::Debug, "AppState",
                 "ignoring launch notification (triggered by location change)");
  EXPECT_EQ(handler.getAppState(), AppState::Foreground);
}

TEST_F(AppStateObserver, ReportsALaunchInTheBackground) {
  Register("a");
  Register("b");
  host.application->SetState(ApplicationState::Background);
  handler.handleAppNotification({Platform::kDidFinishLaunchingNotification, {}});
  EXPECT_EQ(handler.getAppState(), AppState::Background);
  EXPECT_THAT(calls, testing::UnorderedElementsAre("a background", "b background"));
  log.ExpectLine(LogLevel::Debug, "AppState",
                 "ignoring launch notification (app is in the background)");
}

TEST_F(AppStateObserver, TakesALaunchOfAnInactiveApplicationForOneInFront) {
  Register("a");
  host.application->SetState(ApplicationState::Inactive);
  handler.handleAppNotification({Platform::kDidFinishLaunchingNotification, {}});
  EXPECT_THAT(calls, ElementsAre("a foreground"));
}

TEST_F(AppStateObserver, NotifiesAgainWhenNothingChanges) {
  Register("a");
  Post(Platform::kDidEnterBackgroundNotification);
  Post(Platform::kDidEnterBackgroundNotification);
  EXPECT_THAT(calls, ElementsAre("a background", "a background"));
}

TEST_F(AppStateObserver, DoesNothingForOtherNotices) {
  Register("a");
  handler.handleAppNotification({"Other", {{"key", 1}}});
  handler.handleAppNotification({"", "text"});
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(AppStateObserver, HoldsAListenerOnce) {
  const auto listener = Register("a");
  handler.registerListener(listener);
  handler.registerListener(nullptr);
  EXPECT_EQ(handler.getNumListeners(), 1U);
  Post(Platform::kDidEnterBackgroundNotification);
  EXPECT_THAT(calls, ElementsAre("a background"));
}

TEST_F(AppStateObserver, ForgetsAListenerThatIsUnregistered) {
  const auto listener = Register("a");
  const auto other = std::make_shared<StateListener>(calls, "b");
  handler.unregisterListener(other);
  handler.unregisterListener(nullptr);
  EXPECT_EQ(handler.getNumListeners(), 1U);
  handler.unregisterListener(listener);
  EXPECT_EQ(handler.getNumListeners(), 0U);
  Post(Platform::kDidEnterBackgroundNotification);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(AppStateObserver, CallsListenersInTheOrderOfTheirAddresses) {
  using Listener = std::shared_ptr<Velmora::AppStateListenerInterface>;
  Listener low = std::make_shared<StateListener>(calls, "low");
  Listener high = std::make_shared<StateListener>(calls, "high");
  const bool isSwapped = std::less<>()(high.get(), low.get());
  handler.registerListener(high);
  handler.registerListener(low);
  Post(Platform::kDidEnterBackgroundNotification);
  if (isSwapped) {
    EXPECT_THAT(calls, ElementsAre("high background", "low background"));
  } else {
    EXPECT_THAT(calls, ElementsAre("low background", "high background"));
  }
}

// Unregisters itself when it hears something.
class OnceListener final : public Velmora::Object,
                           public virtual Velmora::AppStateListenerInterface {
 public:
  OnceListener(KRVSystemNotificationHandler& handler, TestSupport::Calls& calls)
      : handler_(handler), calls_(calls) {}
  void OnForeground() override {}
  void OnBackground() override {
    calls_.emplace_back("once");
    handler_.unregisterListener(
        std::dynamic_pointer_cast<AppStateListenerInterface>(SharedPtrToThisObjectInterface()));
  }

 private:
  KRVSystemNotificationHandler& handler_;
  TestSupport::Calls& calls_;
};

TEST_F(AppStateObserver, LetsAListenerUnregisterItselfWhileItIsCalled) {
  handler.registerListener(std::make_shared<OnceListener>(handler, calls));
  Post(Platform::kDidEnterBackgroundNotification);
  Post(Platform::kDidEnterBackgroundNotification);
  EXPECT_THAT(calls, ElementsAre("once"));
}

// The service forwards to the observer of the process.
class AppStateService : public TestSupport::UiFixture {
 protected:
  AppStateService() {
    host.notificationCenter->Post({Platform::kWillEnterForegroundNotification, {}});
  }
};

TEST_F(AppStateService, TellsTheStateOfTheProcess) {
  EXPECT_EQ(service->GetAppState(), AppState::Foreground);
  host.notificationCenter->Post({Platform::kDidEnterBackgroundNotification, {}});
  EXPECT_EQ(service->GetAppState(), AppState::Background);
  EXPECT_EQ(Velmora::CreateNativeUiService()->GetAppState(), AppState::Background);
}

TEST_F(AppStateService, RegistersAndUnregistersListeners) {
  const auto before = KRVSystemNotificationHandler::sharedInstance().getNumListeners();
  const auto listener = std::make_shared<StateListener>(calls, "a");
  service->RegisterAppStateListener(listener);
  service->RegisterAppStateListener(nullptr);
  EXPECT_EQ(KRVSystemNotificationHandler::sharedInstance().getNumListeners(), before + 1);
  host.notificationCenter->Post({Platform::kDidEnterBackgroundNotification, {}});
  service->UnregisterAppStateListener(listener);
  host.notificationCenter->Post({Platform::kDidEnterBackgroundNotification, {}});
  EXPECT_THAT(calls, ElementsAre("a background"));
}

}  // namespace
