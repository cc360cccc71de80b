#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "UiFixture.h"
#include "services/ui/KRVFullScreenHandler.h"

namespace {

using namespace std::chrono_literals;

using Platform::Rect;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::FullscreenListener;
using TestSupport::LogLevel;

constexpr const char* kBusy =
    "Full screen message couldn't be displayed, another message is displayed at this time";

class FullscreenMessage : public TestSupport::UiFixture {
 protected:
  std::shared_ptr<Velmora::FullScreenMessageUiInterface> Create(const std::string& html = "<p>") {
    return service->CreateFullscreenMessage(html, listener);
  }

  TestSupport::FakeWebView& View() { return *host.ui->webViews.back(); }
  std::vector<std::shared_ptr<Platform::View>>& Subviews() {
    return host.application->window->subviews;
  }

  const std::shared_ptr<FullscreenListener> listener = std::make_shared<FullscreenListener>(calls);
};

TEST_F(FullscreenMessage, IsNotShownUntilItIsTold) {
  const auto message = Create();
  host.mainQueue->RunAll();
  EXPECT_THAT(host.ui->webViews, IsEmpty());
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(FullscreenMessage, CountsAsDisplayedBeforeTheMainQueueGetsToIt) {
  const auto message = Create();
  message->Show();
  EXPECT_TRUE(service->IsMessageDisplayed());
  EXPECT_THAT(host.ui->webViews, IsEmpty());
  host.mainQueue->RunAll();
  EXPECT_THAT(calls, ElementsAre("show*"));
  EXPECT_EQ(listener->lastMessage.lock(), message);
}

TEST_F(FullscreenMessage, SlidesAWebViewOverTheKeyWindow) {
  host.bundle->SetBundlePath("/app");
  const auto message = Create("<p>Hello</p>");
  message->Show();
  host.mainQueue->RunAll();
  ASSERT_THAT(Subviews(), SizeIs(1));
  const Platform::WebViewSettings& settings = View().settings;
  EXPECT_EQ(settings.kind, Platform::WebViewKind::Modern);
  EXPECT_EQ(settings.look.frame, (Rect{0, 812, 375, 812}));
  EXPECT_FALSE(settings.look.isOpaque);
  EXPECT_TRUE(settings.look.hasClearBackground);
  EXPECT_EQ(settings.look.autoresizingMask, 18U);
  EXPECT_FALSE(settings.bounces);
  EXPECT_FALSE(settings.adjustsContentInset);
  EXPECT_EQ(View().html, "<p>Hello</p>");
  EXPECT_EQ(View().baseUrl, "file:///app/");
  EXPECT_THAT(host.ui->animations, ElementsAre(300ms));
  EXPECT_EQ(View().frame, (Rect{0, 0, 375, 812}));
}

TEST_F(FullscreenMessage, UsesTheLegacyWebViewWhereThereIsNoModernOne) {
  host.ui->supportsModernWebView = false;
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  EXPECT_EQ(View().settings.kind, Platform::WebViewKind::Legacy);
  listener->overrides = true;
  EXPECT_EQ(View().Navigate("app://close"), false);
  listener->overrides = false;
  EXPECT_EQ(View().Navigate("app://close"), true);
}

TEST_F(FullscreenMessage, RefusesToShowWhileOneIsDisplayed) {
  const auto first = Create();
  first->Show();
  host.mainQueue->RunAll();
  const auto second = Create();
  second->Show();
  first->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage", kBusy);
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage", kBusy);
  EXPECT_THAT(calls, ElementsAre("show*"));
  EXPECT_THAT(Subviews(), SizeIs(1));
}

TEST_F(FullscreenMessage, RefusesToShowWhileAnAlertIsDisplayed) {
  service->ShowAlert("Title", "Message", "Yes", "No", nullptr);
  host.mainQueue->RunAll();
  Create()->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage", kBusy);
  EXPECT_THAT(host.ui->webViews, IsEmpty());
  EXPECT_TRUE(service->IsMessageDisplayed());
}

TEST_F(FullscreenMessage, KeepsAnAlertAway) {
  const auto message = Create();
  message->Show();
  service->ShowAlert("Title", "Message", "Yes", "No", nullptr);
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "AlertMessage",
                 "Failed to show alert, another message is displayed at this time");
  EXPECT_THAT(host.ui->alertControllers, IsEmpty());
}

TEST_F(FullscreenMessage, CancelsANavigationThatTheListenerHasDealtWith) {
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  listener->overrides = true;
  EXPECT_EQ(View().Navigate("app://close?id=1"), false);
  EXPECT_THAT(calls, ElementsAre("show*", "load app://close?id=1*"));
  EXPECT_EQ(listener->lastMessage.lock(), message);
}

TEST_F(FullscreenMessage, LetsANavigationProceedOtherwise) {
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  EXPECT_EQ(View().Navigate("https://example.com/"), true);
  EXPECT_THAT(calls, ElementsAre("show*", "load https://example.com/*"));
}

TEST_F(FullscreenMessage, SlidesOutAndTellsTheListener) {
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  message->Remove();
  EXPECT_FALSE(service->IsMessageDisplayed());
  host.mainQueue->RunAll();
  EXPECT_EQ(View().frame, (Rect{0, 812, 375, 812}));
  EXPECT_THAT(host.ui->animations, ElementsAre(300ms, 300ms));
  EXPECT_THAT(Subviews(), IsEmpty());
  EXPECT_EQ(host.ui->RotationWatchCount(), 0U);
  EXPECT_THAT(calls, ElementsAre("show*", "dismiss"));
  EXPECT_EQ(listener->lastMessage.lock(), message);
}

TEST_F(FullscreenMessage, IsDismissedOnce) {
  const auto message = Create();
  message->Remove();
  message->Show();
  message->Remove();
  message->Remove();
  host.mainQueue->RunAll();
  EXPECT_THAT(calls, ElementsAre("show", "dismiss"));
}

TEST_F(FullscreenMessage, LeavesAnotherMessageAloneWhenItWasNotShown) {
  const auto shown = Create();
  shown->Show();
  Create()->Remove();
  EXPECT_TRUE(service->IsMessageDisplayed());
}

TEST_F(FullscreenMessage, CanBeShownAgain) {
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  message->Remove();
  message->Show();
  host.mainQueue->RunAll();
  EXPECT_THAT(host.ui->webViews, SizeIs(2));
  EXPECT_THAT(Subviews(), ElementsAre(host.ui->webViews[1]));
  EXPECT_TRUE(service->IsMessageDisplayed());
}

TEST_F(FullscreenMessage, FillsTheWindowAfterARotation) {
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  host.application->window->frame = {0, 0, 812, 375};
  host.ui->Rotate();
  EXPECT_EQ(View().frame, (Rect{0, 0, 812, 375}));
}

TEST_F(FullscreenMessage, KeepsItselfOnlyWhileItIsShown) {
  auto message = Create();
  const std::weak_ptr<Velmora::FullScreenMessageUiInterface> watch = message;
  message->Show();
  message.reset();
  host.mainQueue->RunAll();
  ASSERT_FALSE(watch.expired());
  watch.lock()->Remove();
  host.mainQueue->RunAll();
  EXPECT_TRUE(watch.expired());
}

TEST_F(FullscreenMessage, GoesWhenItWasNeverShown) {
  auto message = Create();
  const std::weak_ptr<Velmora::FullScreenMessageUiInterface> watch = message;
  message.reset();
  EXPECT_TRUE(watch.expired());
}

TEST_F(FullscreenMessage, IsLoggedWhenItCannotBeBuilt) {
  host.ui->fails = true;
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Unable to show WKWebView (The device failed.)");
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_TRUE(service->IsMessageDisplayed());
  message->Remove();
  host.mainQueue->RunAll();
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(FullscreenMessage, CountsNoLongerWhenItGoesWithoutHavingBeenBuilt) {
  host.ui->fails = true;
  Create()->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Unable to show WKWebView (The device failed.)");
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(FullscreenMessage, FindsWhatLiesInABundleOfAnyName) {
  host.bundle->SetBundlePath("/my app#1/\u00e9");
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  EXPECT_EQ(View().baseUrl, "file:///my%20app%231/%C3%A9/");
}

TEST_F(FullscreenMessage, IsLoggedWhenTheLegacyViewCannotBeBuilt) {
  host.ui->fails = true;
  host.ui->supportsModernWebView = false;
  const auto message = Create();
  message->Show();
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "FullscreenMessage",
                 "Unable to show UIWebView (The device failed.)");
}

TEST_F(FullscreenMessage, OpensUrlsThroughTheApplication) {
  const auto message = Create();
  message->OpenUrl("https://example.com/a");
  message->OpenUrl("");
  host.mainQueue->RunAll();
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/a"));
}

TEST_F(FullscreenMessage, HasAnEmptyFrameWithoutAWindow) {
  host.application->HaveNoWindow();
  EXPECT_EQ(KRVFullScreenHandler::calcFullScreenFrame(), (Rect{0, 0, 0, 0}));
}

TEST_F(FullscreenMessage, IsDismissedWhenItsWindowGoes) {
  Create()->Show();
  host.mainQueue->RunAll();
  host.application->window->Close();
  EXPECT_FALSE(service->IsMessageDisplayed());
  host.mainQueue->RunAll();
  EXPECT_THAT(calls, ElementsAre("show*", "dismiss"));
}

TEST_F(FullscreenMessage, NeedsNoListener) {
  const auto message = service->CreateFullscreenMessage("", nullptr);
  message->Show();
  host.mainQueue->RunAll();
  EXPECT_EQ(View().Navigate("https://example.com/"), true);
  message->Remove();
  host.mainQueue->RunAll();
  EXPECT_THAT(Subviews(), IsEmpty());
}

TEST_F(FullscreenMessage, TakesHtmlOfAnySize) {
  const std::string html(10'000'000, 'x');
  const auto message = Create(html);
  message->Show();
  host.mainQueue->RunAll();
  EXPECT_EQ(View().html, html);
}

}  // namespace
