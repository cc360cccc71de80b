#include <string>
#include <vector>

#include "unit/core/modules/RulesFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::LogLevel;
using Velmora::Event;
using Velmora::Variant;

class RulesFiringTest : public RulesFixture {
 protected:
  static std::string Opening(const std::string& url) {
    return R"({"open": {"url": "https://example.com/)" + url + R"("}})";
  }
  std::vector<std::string> Opened() const { return host.application->OpenedUrls(); }
};

TEST_F(RulesFiringTest, FiresForEventsThatFitInTheOrderOfTheFile) {
  StartCore();
  Install(Archive(RuleThen("b", Opening("b")) + "," +
                  R"({"id": "vip", "if": {"field": "data.visitor.level", "greater": 2}, "then": )" +
                  Opening("vip") + "}," + RuleThen("a", Opening("a"))));
  EXPECT_EQ(Dispatch(NewEvent("other", "shop", "leave")), "");
  Settle();
  EXPECT_THAT(Opened(), IsEmpty());
  Visit({{"visitor", Variant::FromVariantMap({{"level", Variant::FromLong(3)}})}});
  EXPECT_THAT(Opened(), ElementsAre("https://example.com/b", "https://example.com/vip",
                                    "https://example.com/a"));
  EXPECT_TRUE(WaitForOutcomes({"b open fired", "vip open fired", "a open fired"}));
}

TEST_F(RulesFiringTest, SeesWhatTheAppTracks) {
  StartCore();
  Install(Archive(R"({"id": "cart", "if": {"and": [
      {"field": "type", "equals": "analytics"}, {"field": "source", "equals": "request"},
      {"field": "data.action", "equals": "addToCart"},
      {"field": "data.contextdata.total", "greater": 100}]}, "then": )" +
                  Opening("cart") + "}"));
  const auto track = [this](const std::string& total) {
    const auto data = std::make_shared<Velmora::EventData>();
    data->PutString("action", "addToCart");
    data->PutStringMap("contextdata", {{"total", total}});
    core->Track(data);
    Settle();
  };
  track("99.5");
  EXPECT_THAT(Opened(), IsEmpty());
  track("100.5");
  EXPECT_THAT(Opened(), SizeIs(1));
}

TEST_F(RulesFiringTest, ALimitHoldsAcrossStarts) {
  StartCore();
  Install(Archive(RuleThen("once", Opening("once"), R"("once": true, )") + "," +
                  RuleThen("thrice", Opening("thrice"), R"("limit": 3, )")));
  Visit();
  VisitLater();
  EXPECT_THAT(Opened(), SizeIs(3));
  Restart();
  VisitLater();
  VisitLater();
  EXPECT_THAT(Opened(), ElementsAre("https://example.com/once", "https://example.com/thrice",
                                    "https://example.com/thrice", "https://example.com/thrice"));
}

TEST_F(RulesFiringTest, ALimitIsForgottenWithItsRule) {
  StartCore();
  const std::string archive = Archive(RuleThen("a", Opening("a"), R"("once": true, )"));
  Install(archive);
  Visit();
  Install(Archive(RuleThen("a", Opening("a"), R"("once": true, )") + "," +
                  RuleThen("b", Opening("b"), R"("once": true, )")));
  Visit();
  EXPECT_THAT(Opened(), ElementsAre("https://example.com/a", "https://example.com/b"));
  Install(Archive(RuleThen("b", Opening("b"), R"("once": true, )")));
  Install(archive);
  Visit();
  EXPECT_THAT(Opened(), SizeIs(3));
}

TEST_F(RulesFiringTest, ARuleThatHasFiredRests) {
  StartCore();
  Install(Archive(RuleThen("a", Opening("a"))));
  Visit();
  Visit();
  clock->Advance(std::chrono::milliseconds(999));
  Visit();
  EXPECT_THAT(Opened(), SizeIs(1));
  clock->Advance(std::chrono::milliseconds(1));
  Visit();
  EXPECT_THAT(Opened(), SizeIs(2));
  clock->SetTimeOfDay(TestSupport::ManualClock::kStart - std::chrono::hours(1));
  Visit();
  EXPECT_THAT(Opened(), SizeIs(3)) << "a clock that was set back must not keep a rule at rest";
}

TEST_F(RulesFiringTest, RulesHearNothingOfTheirOwnMaking) {
  StartCore();
  Install(Archive(R"({"id": "loop", "if": {"or": [{"field": "type", "equals": "rules"},
      {"and": [{"field": "source", "equals": "sharedState"},
               {"field": "data.stateOwner", "equals": "rules"}]}]}, "then": )" +
                  Opening("loop") + "}," + RuleThen("a", Opening("a"))));
  Visit();
  EXPECT_TRUE(WaitForOutcomes({"a open fired"}));
  core->DownloadRules();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Debug, "Rules",
                              "the rules that the configuration names serve already"));
  Settle();
  EXPECT_THAT(Opened(), ElementsAre("https://example.com/a"));
}

TEST_F(RulesFiringTest, AChainOfReactionsEnds) {
  StartCore();
  Install(Archive(RuleThen("a", Opening("a"))));
  // Answers every firing with what makes the rule fire.
  const auto echo = std::make_shared<RecordingModule>("echo");
  const auto echoing = std::make_shared<RecordingListener>(
      [this](const EventPointer&) { EXPECT_EQ(Dispatch(NewEvent("again", "shop", "visit")), ""); });
  echo->onRegister = [echoing](const ModuleServices& moduleServices) {
    moduleServices->RegisterListener(echoing, EventTypes::kRules, EventSources::kResponse);
  };
  EXPECT_EQ(Register(echo), "");
  EXPECT_TRUE(echo->WaitForCalls({"register"}));
  Visit();
  EXPECT_TRUE(echoing->WaitForCount(1));
  EXPECT_TRUE(TestSupport::WaitUntil([this] { return CountHeard("shop", "visit") == 2; }));
  Settle();
  EXPECT_EQ(echoing->Count(), 1U);
  EXPECT_THAT(Opened(), SizeIs(1));
}

TEST_F(RulesFiringTest, OneRuleAtATimeTakesTheScreen) {
  StartCore();
  const auto alert = [](const std::string& id) {
    return RuleThen(id, R"({"alert": {"message": ")" + id + R"(", "positive": "OK"}})",
                    R"("once": true, )");
  };
  Install(Archive(alert("first") + "," + RuleThen("between", Opening("between")) + "," +
                  alert("second")));
  log.ExpectLine(LogLevel::Debug, "Rules",
                 "the rule \"second\" does not fire: the screen is taken");
  Visit();
  EXPECT_TRUE(WaitForOutcomes({"first alert fired", "between open fired"}));
  host.mainQueue->RunAll();
  ASSERT_THAT(host.ui->alertControllers, SizeIs(1));
  log.ExpectLine(LogLevel::Debug, "Rules",
                 "the rule \"second\" does not fire: the screen is taken");
  VisitLater();
  host.ui->alertControllers[0]->Choose("OK");
  VisitLater();
  host.mainQueue->RunAll();
  ASSERT_THAT(host.ui->alertControllers, SizeIs(2));
  EXPECT_EQ(host.ui->alertControllers[1]->message, "second");
}

TEST_F(RulesFiringTest, HundredsOfRulesAreAskedAboutEveryEvent) {
  StartCore();
  std::string rules = RuleThen("last", Opening("last"));
  for (int count = 1; count < 500; ++count) {
    rules = R"({"id": "r)" + std::to_string(count) +
            R"(", "if": {"field": "data.never.there", "exists": true}, "then": )" +
            Opening("never") + "}," + rules;
  }
  Install(Archive(rules));
  for (int count = 0; count < 1'000; ++count) {
    EXPECT_EQ(Dispatch(NewEvent("noise", "app", "noise")), "");
  }
  Visit();
  EXPECT_THAT(Opened(), ElementsAre("https://example.com/last"));
}

}  // namespace
