#include <filesystem>
#include <string>
#include <vector>

#include "unit/core/modules/RulesFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::LogLevel;

class RulesShowingTest : public RulesFixture {
 protected:
  // A rule of this consequence fires, and the main queue does what that needs.
  void Show(const std::string& then, const std::map<std::string, std::string>& files = {}) {
    StartCore();
    Install(Archive(RuleThen("a", then), files));
    Visit();
    host.mainQueue->RunAll();
  }

  std::size_t ViewsOnScreen() const { return host.application->window->subviews.size(); }
};

constexpr const char* kAlert = R"({"alert": {"title": "Sale", "message": "All hats", "positive":
    "Show me", "negative": "Later", "url": "https://example.com/hats"}})";

TEST_F(RulesShowingTest, AnAlertsPositiveButtonOpensItsUrl) {
  Show(kAlert);
  ASSERT_THAT(host.ui->alertControllers, SizeIs(1));
  const auto alert = host.ui->alertControllers[0];
  EXPECT_EQ(alert->title, "Sale");
  EXPECT_EQ(alert->message, "All hats");
  ASSERT_THAT(alert->actions, SizeIs(2));
  EXPECT_TRUE(WaitForOutcomes({"a alert fired", "a alert shown"}));
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
  alert->Choose("Show me");
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/hats"));
  EXPECT_TRUE(
      WaitForOutcomes({"a alert fired", "a alert shown", "a alert positive", "a alert dismissed"}));
}

TEST_F(RulesShowingTest, AnAlertsNegativeButtonOpensNothing) {
  Show(kAlert);
  ASSERT_THAT(host.ui->alertControllers, SizeIs(1));
  host.ui->alertControllers[0]->Choose("Later");
  EXPECT_TRUE(
      WaitForOutcomes({"a alert fired", "a alert shown", "a alert negative", "a alert dismissed"}));
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
}

TEST_F(RulesShowingTest, AMessageIsAFileOfTheArchive) {
  Show(R"({"message": {"html": "welcome.html"}})", {{"welcome.html", "<h1>Welcome</h1>"}});
  ASSERT_THAT(host.ui->webViews, SizeIs(1));
  EXPECT_EQ(host.ui->webViews[0]->html, "<h1>Welcome</h1>");
  EXPECT_EQ(ViewsOnScreen(), 1U);
  EXPECT_TRUE(WaitForOutcomes({"a message fired", "a message shown"}));
}

TEST_F(RulesShowingTest, AMessageMayStandInTheRulesThemselves) {
  Show(R"({"message": {"base64": "PGgxPldlbGNvbWU8L2gxPg=="}})");
  ASSERT_THAT(host.ui->webViews, SizeIs(1));
  EXPECT_EQ(host.ui->webViews[0]->html, "<h1>Welcome</h1>");
}

TEST_F(RulesShowingTest, AMessageThatIsNoBase64IsOneLine) {
  log.ExpectLine(LogLevel::Error, "Rules", "a message cannot be shown: it is no text in base64");
  Show(R"({"message": {"base64": "<h1>"}})");
  EXPECT_THAT(host.ui->webViews, IsEmpty());
}

TEST_F(RulesShowingTest, LinksOfTheSchemeVelmoraCloseAMessage) {
  Show(R"({"message": {"html": "welcome.html"}})", {{"welcome.html", "<h1>"}});
  ASSERT_THAT(host.ui->webViews, SizeIs(1));
  EXPECT_EQ(host.ui->webViews[0]->Navigate("VELMORA://close"), false);
  host.mainQueue->RunAll();
  EXPECT_EQ(ViewsOnScreen(), 0U);
  EXPECT_FALSE(services->ui->IsMessageDisplayed());
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
  EXPECT_TRUE(WaitForOutcomes({"a message fired", "a message shown", "a message dismissed"}));
}

TEST_F(RulesShowingTest, OtherLinksOfAMessageAreOpenedByTheSystem) {
  Show(R"({"message": {"html": "welcome.html"}})", {{"welcome.html", "<h1>"}});
  ASSERT_THAT(host.ui->webViews, SizeIs(1));
  const auto view = host.ui->webViews[0];
  EXPECT_EQ(view->Navigate("https://example.com/hats"), false);
  EXPECT_EQ(view->Navigate("tel:112"), false);
  host.mainQueue->RunAll();
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/hats", "tel:112"));
  EXPECT_EQ(ViewsOnScreen(), 1U);
  EXPECT_TRUE(
      WaitForOutcomes({"a message fired", "a message shown", "a message link", "a message link"}));
}

TEST_F(RulesShowingTest, LinksInsideAMessageStayInIt) {
  Show(R"({"message": {"html": "welcome.html"}})", {{"welcome.html", "<h1>"}});
  ASSERT_THAT(host.ui->webViews, SizeIs(1));
  const auto view = host.ui->webViews[0];
  EXPECT_EQ(view->Navigate("about:blank#terms"), true);
  EXPECT_EQ(view->Navigate("file:///app/#terms"), true);
  log.AllowLines(LogLevel::Debug, "NativeUrlService", testing::_);
  EXPECT_EQ(view->Navigate("no url at all"), false);
  host.mainQueue->RunAll();
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
}

TEST_F(RulesShowingTest, AMessageWhoseFileHasGoneIsOneLine) {
  StartCore();
  Install(Archive(RuleThen("a", R"({"message": {"html": "welcome.html"}})"),
                  {{"welcome.html", "<h1>"}}));
  std::filesystem::remove_all(RulesRoot());
  log.ExpectLine(LogLevel::Error, "Rules", testing::HasSubstr("welcome.html\" cannot be read: "));
  Visit();
  host.mainQueue->RunAll();
  EXPECT_THAT(host.ui->webViews, IsEmpty());
}

TEST_F(RulesShowingTest, AMessageThatIsTooLongIsOneLine) {
  StartCore();
  Install(Archive(RuleThen("a", R"({"message": {"html": "long.html"}})"),
                  {{"long.html", std::string(4 * 1024 * 1024 + 1, ' ')}}));
  log.ExpectLine(LogLevel::Error, "Rules", testing::HasSubstr("cannot be read: it is too long"));
  Visit();
}

TEST_F(RulesShowingTest, ANotificationIsScheduledUnderTheRulesName) {
  Show(R"({"notification": {"text": "Come back", "delay": 60, "sound": "bell",
       "userInfo": {"shop": {"id": 7}}}})");
  const auto requests = host.userNotificationCenter->Requests();
  ASSERT_THAT(requests, SizeIs(1));
  EXPECT_EQ(requests[0].identifier, "a");
  EXPECT_EQ(requests[0].content.body, "Come back");
  EXPECT_EQ(requests[0].content.userInfo.Get("shop").Get("id").AsInt64(), 7);
}

TEST_F(RulesShowingTest, ATapOnTheButtonOpensItsUrlAndTakesItAway) {
  Show(R"({"button": {"url": "https://example.com/help"}})");
  ASSERT_THAT(host.ui->imageViews, SizeIs(1));
  EXPECT_EQ(ViewsOnScreen(), 1U);
  host.ui->imageViews[0]->RecognizerOf<TestSupport::FakeTapGestureRecognizer>()->Tap();
  host.mainQueue->RunAll();
  EXPECT_EQ(ViewsOnScreen(), 0U);
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/help"));
  EXPECT_TRUE(WaitForOutcomes({"a button fired", "a button tapped"}));
}

TEST_F(RulesShowingTest, ThereIsOneButtonAtATimeAndItGoesWithTheCore) {
  Show(R"({"button": {}})");
  EXPECT_EQ(ViewsOnScreen(), 1U);
  VisitLater();
  host.mainQueue->RunAll();
  EXPECT_EQ(ViewsOnScreen(), 1U);
  Finish();
  core = nullptr;
  host.mainQueue->RunAll();
  EXPECT_EQ(ViewsOnScreen(), 0U);
}

TEST_F(RulesShowingTest, AUrlThatNothingOpensIsOneLine) {
  host.application->SetOpensUrls(false);
  log.ExpectLine(LogLevel::Warning, "Rules", "the URL of a rule was not opened");
  Show(R"({"open": {"url": "shop://cart"}})");
}

TEST_F(RulesShowingTest, WithoutAScreenServiceItSaysSo) {
  services->ui = nullptr;
  log.ExpectLine(LogLevel::Warning, "Rules",
                 "the rule \"a\" shows nothing: there is no screen service");
  Show(kAlert);
}

TEST_F(RulesShowingTest, WhatIsOnScreenMayOutliveTheCore) {
  Show(R"({"message": {"html": "welcome.html"}})", {{"welcome.html", "<h1>"}});
  ASSERT_THAT(host.ui->webViews, SizeIs(1));
  Finish();
  core = nullptr;
  EXPECT_EQ(host.ui->webViews[0]->Navigate("https://example.com/hats"), false);
  EXPECT_EQ(host.ui->webViews[0]->Navigate("velmora:close"), false);
  host.mainQueue->RunAll();
  EXPECT_EQ(ViewsOnScreen(), 0U);
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/hats"));
}

}  // namespace
