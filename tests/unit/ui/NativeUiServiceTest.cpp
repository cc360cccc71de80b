#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "UiFixture.h"
#include "platform/headless/HeadlessUi.h"
#include "services/ui/KRVMessagesMonitor.h"
#include "services/ui/KRVUrlHandler.h"
#include "support/FailingPorts.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;

class NativeUiService : public TestSupport::UiFixture {};

TEST_F(NativeUiService, TakesUpPendingNotificationsWhenItIsMade) {
  EXPECT_EQ(host.userNotificationCenter->TimesResumed(), 1);
}

TEST_F(NativeUiService, OpensUrls) {
  EXPECT_TRUE(service->ShowUrl("https://example.com/a?b=c"));
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/a?b=c"));
}

TEST_F(NativeUiService, OpensNothingForAnEmptyText) {
  EXPECT_FALSE(service->ShowUrl(""));
  EXPECT_FALSE(KRVUrlHandler::showUrl(std::nullopt));
  EXPECT_FALSE(KRVUrlHandler::showUrl(""));
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
}

TEST_F(NativeUiService, OpensNothingThatIsNoUrl) {
  EXPECT_FALSE(service->ShowUrl("no url: at all"));
  EXPECT_FALSE(service->ShowUrl("http://[bad"));
  EXPECT_FALSE(service->ShowUrl("\xFF\xFE"));
  EXPECT_FALSE(service->ShowUrl(std::string(10'000'000, ' ')));
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
}

TEST_F(NativeUiService, TellsWhenNothingOpensAUrl) {
  host.application->SetOpensUrls(false);
  EXPECT_FALSE(service->ShowUrl("https://example.com/"));
}

TEST_F(NativeUiService, SharesOneFlagBetweenAllMonitors) {
  KRVMessagesMonitor one;
  KRVMessagesMonitor other;
  one.displayed();
  EXPECT_TRUE(other.isDisplayed());
  EXPECT_TRUE(service->IsMessageDisplayed());
  other.dismissed();
  EXPECT_FALSE(one.isDisplayed());
}

TEST_F(NativeUiService, TakesRequestsOfSeveralThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int j = 0; j < 50; ++j) {
        service->ShowAlert("Title", "Message", "Yes", "No", nullptr);
        service->CreateFullscreenMessage("<p>", nullptr);
        service->CreateFloatingButton(nullptr);
        service->ShowLocalNotification("id", "", "", "", {}, "", {}, "");
        service->GetAppState();
        service->IsMessageDisplayed();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  log.AllowLines(LogLevel::Debug, "AlertMessage", testing::_);
  host.mainQueue->RunAll();
  EXPECT_THAT(host.ui->alertControllers, testing::SizeIs(1));
}

TEST_F(NativeUiService, ThrowsNothingOnADeviceThatFails) {
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  const auto failing = Velmora::CreateNativeUiService();
  failing->ShowAlert("Title", "Message", "Yes", "No", nullptr);
  failing->ShowLocalNotification("id", "Body", "", "", {}, "", {}, "");
  EXPECT_FALSE(failing->ShowUrl("https://example.com/"));
  const auto button = failing->CreateFloatingButton(nullptr);
  button->Display();
  const auto message = failing->CreateFullscreenMessage("<p>", nullptr);
  host.mainQueue->RunAll();
  message->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Error, "KRVAlertHandler", "Unable to show alert");
  log.ExpectLine(LogLevel::Debug, "FloatingButton", "Unable to display (The device failed.)");
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Unable to show WKWebView (The device failed.)");
  EXPECT_THAT(host.systemLog->TakeLines(), IsEmpty());
}

// A device whose screen ports are the headless ones.
class HeadlessUiService : public NativeUiService {
 protected:
  HeadlessUiService() {
    Platform::Host headless = host.Copy();
    headless.ui = std::make_shared<Platform::HeadlessUi>(host.systemLog, host.mainQueue);
    Platform::Host::Install(headless);
    host.application->HaveNoWindow();
  }
};

TEST_F(HeadlessUiService, ShowsNothingAndSaysSo) {
  const auto alertListener = std::make_shared<TestSupport::AlertListener>(calls, "alert");
  const auto messageListener = std::make_shared<TestSupport::FullscreenListener>(calls);
  const auto button = service->CreateFloatingButton(nullptr);
  const auto message = service->CreateFullscreenMessage("<p>", messageListener);
  service->ShowAlert("Title", "Message", "Yes", "No", alertListener);
  button->Display();
  host.mainQueue->RunAll();
  message->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Error, "KRVAlertHandler", "Unable to show alert");
  log.ExpectLine(LogLevel::Debug, "FloatingButton",
                 "Unable to display (An image was not made: there is no screen.)");
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Unable to show WKWebView (A web view was not made: there is no screen.)");
  EXPECT_THAT(host.systemLog->TakeLines(),
              ElementsAre("An alert was not made: there is no screen.",
                          "An image was not made: there is no screen.",
                          "A web view was not made: there is no screen."));
  EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
