#include <memory>
#include <string>

#include "ui/MessageFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Until;
using TestSupport::WebServer;

// Where a message may go, and where not.
class NavigationOnScreen : public TestSupport::MessageFixture {
 protected:
  std::string Load(const std::string& path) const { return "load " + server.Url(path) + "*"; }
  std::string Link(const std::string& path, const std::string& more = "") const {
    return BluePage(Target("a", "href='" + server.Url(path) + "' " + more));
  }

  const WebServer server;
};

TEST_F(NavigationOnScreen, FollowsALinkThatTheListenerLeavesAlone) {
  const auto message = Show(Link("/green"));
  ClickTarget();
  EXPECT_TRUE(UntilColour(WebServer::kGreen));
  EXPECT_THAT(server.Requests(), ElementsAre("GET /green"));
  EXPECT_THAT(calls, ElementsAre("show*", Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, GoesNowhereWhenTheListenerHasDealtWithTheLink) {
  listener->overrides = true;
  const auto message = Show(Link("/green"));
  ClickTarget();
  EXPECT_TRUE(UntilHeard(Load("/green")));
  TestSupport::LetPass(std::chrono::milliseconds(200));
  EXPECT_TRUE(IsAllOver(kBlue));
  EXPECT_THAT(server.Requests(), IsEmpty());
  EXPECT_THAT(calls, ElementsAre("show*", Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksAgainForEachClick) {
  listener->overrides = true;
  const auto message = Show(Link("/green"));
  ClickTarget();
  EXPECT_TRUE(Until([this] { return calls.size() == 2; }));
  ClickTarget();
  EXPECT_TRUE(Until([this] { return calls.size() == 3; }));
  EXPECT_THAT(calls, ElementsAre("show*", Load("/green"), Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksAboutEachStepOfARedirect) {
  const auto message = Show(Link("/redirect"));
  ClickTarget();
  EXPECT_TRUE(UntilColour(WebServer::kGreen));
  EXPECT_THAT(calls, ElementsAre("show*", Load("/redirect"), Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, StaysWhereItIsWhenTheEndOfARedirectIsRefused) {
  listener->overriddenUrl = server.Url("/green");
  const auto message = Show(Link("/redirect"));
  ClickTarget();
  EXPECT_TRUE(UntilHeard(Load("/green")));
  TestSupport::LetPass(std::chrono::milliseconds(200));
  EXPECT_TRUE(IsAllOver(kBlue));
  EXPECT_THAT(server.Requests(), ElementsAre("GET /redirect"));
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksAboutAForm) {
  const auto message = Show(BluePage("<form method='post' action='" + server.Url("/form") +
                                     "'><input type='hidden' name='size' value='M'>" +
                                     Target("button", "type='submit'") + "</form>"));
  ClickTarget();
  EXPECT_TRUE(UntilColour(WebServer::kGreen));
  EXPECT_THAT(server.Requests(), ElementsAre("POST /form size=M"));
  EXPECT_THAT(calls, ElementsAre("show*", Load("/form")));
  Remove(message);
}

TEST_F(NavigationOnScreen, SendsNoFormThatTheListenerHasDealtWith) {
  listener->overrides = true;
  const auto message = Show(BluePage("<form method='post' action='" + server.Url("/form") + "'>" +
                                     Target("button", "type='submit'") + "</form>"));
  ClickTarget();
  EXPECT_TRUE(UntilHeard(Load("/form")));
  TestSupport::LetPass(std::chrono::milliseconds(200));
  EXPECT_THAT(server.Requests(), IsEmpty());
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksOnceAboutANewWindowAndGoesThereItself) {
  const auto message =
      Show(BluePage(Target("button", "onclick='window.open(\"" + server.Url("/green") + "\")'")));
  ClickTarget();
  EXPECT_TRUE(UntilColour(WebServer::kGreen));
  EXPECT_THAT(calls, ElementsAre("show*", Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, OpensNoNewWindowThatTheListenerHasDealtWith) {
  listener->overrides = true;
  const auto message =
      Show(BluePage(Target("button", "onclick='window.open(\"" + server.Url("/green") + "\")'")));
  ClickTarget();
  EXPECT_TRUE(UntilHeard(Load("/green")));
  TestSupport::LetPass(std::chrono::milliseconds(200));
  EXPECT_THAT(server.Requests(), IsEmpty());
  EXPECT_THAT(calls, ElementsAre("show*", Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksOnceAboutALinkToANewWindow) {
  const auto message = Show(Link("/green", "target='_blank'"));
  ClickTarget();
  EXPECT_TRUE(UntilColour(WebServer::kGreen));
  EXPECT_THAT(calls, ElementsAre("show*", Load("/green")));
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksWhereThePageItselfGoesOn) {
  listener->overrides = true;
  const auto message = Create("<meta http-equiv='refresh' content='0;url=" + server.Url("/green") +
                              "'>" + BluePage());
  message->Show();
  EXPECT_TRUE(UntilHeard(Load("/green")));
  EXPECT_TRUE(UntilColour(kBlue));
  Remove(message);
}

TEST_F(NavigationOnScreen, AsksAboutSchemesThatItKnowsNothingOf) {
  listener->overrides = true;
  const auto message = Show(BluePage(Target("a", "href='shop-action:close?a=b%20c'")));
  ClickTarget();
  EXPECT_TRUE(UntilHeard("load shop-action:close?a=b%20c*"));
  EXPECT_TRUE(IsAllOver(kBlue));
  Remove(message);
}

TEST_F(NavigationOnScreen, KeepsItsContentWhenALinkLeadsNowhere) {
  const std::string nowhere = WebServer().Url("/");  // its port is free again
  const auto message = Show(BluePage(Target("a", "href='" + nowhere + "'")));
  ClickTarget();
  EXPECT_TRUE(Until([this] { return !screen.systemLog->Lines().empty(); }));
  EXPECT_THAT(screen.systemLog->TakeLines(),
              ElementsAre(testing::StartsWith("A web view did not load: ")));
  EXPECT_TRUE(IsAllOver(kBlue));
  Remove(message);
}

}  // namespace
