// What goes to the collector, when, and what becomes of its answers.

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "unit/core/modules/AnalyticsFixture.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::MobilePrivacyStatus;
using Velmora::Variant;

class AnalyticsSendingTest : public AnalyticsFixture {
 protected:
  // In seconds. The wait for an answer must not be taken for one between attempts.
  static constexpr int kTimeoutLikeNoDelay = 5;

  AnalyticsSendingTest() {
    log.AllowLines(LogLevel::Debug, "Analytics", testing::StartsWith("a hit was not taken"));
    log.AllowLines(LogLevel::Debug, "NativeNetworkService", testing::_);
  }
};

TEST_F(AnalyticsSendingTest, PostsEachHitInOrderAsJson) {
  StartSending();
  for (int count = 0; count < 250; ++count) Track(std::to_string(count));
  ASSERT_TRUE(WaitForNumbers({0, 250, 0}));
  const std::vector<std::string> posted = Posted();
  ASSERT_EQ(posted.size(), 250U);
  for (int count = 0; count < 250; ++count) {
    EXPECT_EQ(posted[static_cast<std::size_t>(count)], std::to_string(count));
  }
  const Platform::UrlRequest request = host.urlSession->Requests().at(0);
  EXPECT_EQ(request.url, kCollector);
  EXPECT_EQ(request.method, "POST");
  EXPECT_THAT(request.headers,
              testing::Contains(Platform::UrlHeader{"Content-Type", "application/json"}));
}

TEST_F(AnalyticsSendingTest, GivesEachHitAnIdThatItsEventTellsToo) {
  StartSending();
  Track("one");
  Track("two");
  ASSERT_TRUE(WaitForNumbers({0, 2, 0}));
  const std::vector<std::string> ids = Posted(EventKeys::kHitId);
  EXPECT_EQ(ids.at(0).size(), 36U);
  EXPECT_NE(ids.at(0), ids.at(1));
  Settle();
  EXPECT_EQ(Heard(EventTypes::kAnalytics, EventSources::kPrepared)
                ->GetData()
                ->Get(EventKeys::kHitId)
                ->GetString(),
            ids.at(0));
}

TEST_F(AnalyticsSendingTest, KeepsHitsUntilTheVisitorOptsIn) {
  StartCore();
  UseCollector();
  Track("early");
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
  EXPECT_THAT(Posted(), IsEmpty());
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_THAT(Posted(), ElementsAre("early"));
}

TEST_F(AnalyticsSendingTest, DeletesWhatWaitsWhenTheVisitorOptsOut) {
  StartCore();
  UseCollector();
  Track("early");
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  EXPECT_THAT(Numbers(), ElementsAre(0, 0, 0));
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  Track("late");
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_THAT(Posted(), ElementsAre("late"));
}

TEST_F(AnalyticsSendingTest, GivesUpWhatIsUnderWayWhenTheVisitorOptsOut) {
  AnswerWith(Session::Never());
  StartSending();
  Track("under way");
  Track("next");
  ASSERT_TRUE(WaitForPosts(1));
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  EXPECT_THAT(Numbers(), ElementsAre(0, 0, 0));
  EXPECT_THAT(clock->Waits(), IsEmpty());
  EXPECT_THAT(Posted(), ElementsAre("under way"));
}

TEST_F(AnalyticsSendingTest, SendsNothingWithoutACollector) {
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  Track("waits");
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
  EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(AnalyticsSendingTest, SendsNothingInTheClear) {
  StartSending();
  log.ExpectLine(LogLevel::Warning, "Analytics",
                 "hits wait: \"analytics.collector\" of the configuration is no https URL");
  UseCollector("http://collector.test/https");
  Configure("other", Variant::FromLong(1));
  Track("waits");
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
  EXPECT_THAT(Posted(), IsEmpty());
  UseCollector();
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
}

TEST_F(AnalyticsSendingTest, TriesAgainAfterDelaysThatDoubleUpToTenMinutes) {
  AnswerWith(Session::Respond(500));
  StartSending();
  Configure("analytics.timeout", Variant::FromLong(kTimeoutLikeNoDelay));
  Track("stubborn");
  for (const auto delay : std::vector<std::chrono::milliseconds>{1s, 2s, 4s, 8s, 16s, 32s, 64s,
                                                                 128s, 256s, 512s, 600s, 600s}) {
    ASSERT_TRUE(WaitForWait(delay)) << delay.count();
    clock->Advance(delay);
  }
  ASSERT_TRUE(WaitForPosts(13));
  ASSERT_TRUE(WaitForWait(600s));
  AnswerWith(Session::Respond(204));
  clock->Advance(600s);
  ASSERT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_THAT(Posted(EventKeys::kHitId), testing::Each(Posted(EventKeys::kHitId).at(0)));
  // After a success it begins anew.
  AnswerWith(Session::Respond(500));
  Track("next");
  EXPECT_TRUE(WaitForWait(1s));
}

TEST_F(AnalyticsSendingTest, LeavesTheCollectorAloneForAsLongAsItAsksFor) {
  AnswerWith(Session::Respond(503, "", {{"Retry-After", "90"}}));
  StartSending();
  Track("patient");
  ASSERT_TRUE(WaitForWait(90s));
  AnswerWith(Session::Respond(429, "", {{"Retry-After", "Thu, 05 Mar 2026 10:25:00 GMT"}}));
  clock->Advance(90s);
  ASSERT_TRUE(WaitForWait(180s));
  AnswerWith(Session::Respond(429, "", {{"Retry-After", "1"}}));
  clock->Advance(180s);
  EXPECT_TRUE(WaitForWait(4s)) << "no sooner than without";
}

TEST_F(AnalyticsSendingTest, TakesSilenceForAFailureOnceTheTimeIsUp) {
  AnswerInTurn({Session::Never(), Session::Respond(200)});
  StartSending();
  Track("silent");
  ASSERT_TRUE(WaitForPosts(1));
  EXPECT_EQ(host.urlSession->Requests().at(0).wholeTimeout, 15s);
  ASSERT_TRUE(WaitForWait(16s));
  clock->Advance(16s);
  ASSERT_TRUE(WaitForWait(1s));
  clock->Advance(1s);
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
}

TEST_F(AnalyticsSendingTest, TakesTheTimeoutFromTheConfiguration) {
  AnswerWith(Session::Never());
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  Configure("analytics.timeout", Variant::FromLong(2));
  UseCollector();
  Track("silent");
  EXPECT_TRUE(WaitForWait(3s));
}

TEST_F(AnalyticsSendingTest, SendsWhatFailedOfflineWhenTheNetworkIsBack) {
  AnswerInTurn({Session::Fail(Platform::UrlFailure::NotConnected), Session::Respond(200)});
  StartSending();
  for (const char* action : {"a", "b", "c"}) Track(action);
  ASSERT_TRUE(WaitForWait(16s));
  clock->Advance(16s);
  ASSERT_TRUE(WaitForWait(1s));
  clock->Advance(1s);
  EXPECT_TRUE(WaitForNumbers({0, 3, 0}));
  EXPECT_THAT(Posted(), ElementsAre("a", "a", "b", "c"));
}

TEST_F(AnalyticsSendingTest, KeepsWhatTheCollectorMayTakeLater) {
  const std::vector<int> statuses{301, 401, 403, 404, 405, 408, 410, 425, 429, 500, 502, 503, 504};
  std::vector<Answer> answers;
  for (const int status : statuses) answers.push_back(Session::Respond(status));
  AnswerInTurn(answers);
  StartSending();
  Configure("analytics.timeout", Variant::FromLong(kTimeoutLikeNoDelay));
  Track("kept");
  std::chrono::milliseconds delay = 1s;
  for (const int status : statuses) {
    ASSERT_TRUE(WaitForWait(delay)) << status;
    EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0)) << status;
    clock->Advance(delay);
    delay = std::min<std::chrono::milliseconds>(delay * 2, 10min);
  }
}

TEST_F(AnalyticsSendingTest, DropsWhatTheCollectorRefusesForGoodAndSaysSo) {
  AnswerInTurn({Session::Respond(400), Session::Respond(413), Session::Respond(415),
                Session::Respond(422), Session::Respond(200)});
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  for (const char* action : {"a", "b", "c", "d", "good"}) Track(action);
  EXPECT_THAT(Numbers(), ElementsAre(5, 0, 0));
  log.AllowLines(LogLevel::Warning, "Analytics",
                 "hits were dropped: 0 because too many waited, 0 because they were too old, 1 "
                 "because the collector refused them");
  UseCollector();
  EXPECT_TRUE(WaitForNumbers({0, 1, 4}));
  EXPECT_THAT(Posted(), ElementsAre("a", "b", "c", "d", "good"));
  EXPECT_EQ(StateOf("analytics"), R"({"dropped":4})");
}

TEST_F(AnalyticsSendingTest, TriesAnotherCollectorAtOnce) {
  AnswerWith(Session::Respond(404));
  StartSending();
  Track("lost");
  ASSERT_TRUE(WaitForWait(1s));
  AnswerWith(Session::Respond(200));
  UseCollector("https://other.test/");
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_EQ(host.urlSession->Requests().back().url, "https://other.test/");
}

TEST_F(AnalyticsSendingTest, SaysOnceThatThereIsNoNetworkService) {
  services->network = nullptr;
  log.ExpectLine(LogLevel::Warning, "Analytics", "hits wait: there is no network service");
  StartSending();
  Configure("other", Variant::FromLong(1));
  Track("waits");
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
}

TEST_F(AnalyticsSendingTest, ResendsWithTheSameIdWhatWasNotAcknowledgedBeforeTheEnd) {
  AnswerInTurn({Session::Never(), Session::Respond(200)});
  StartSending();
  Track("twice");
  ASSERT_TRUE(WaitForPosts(1));
  Restart();
  UseCollector();
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
  const std::vector<std::string> ids = Posted(EventKeys::kHitId);
  ASSERT_EQ(ids.size(), 2U);
  EXPECT_EQ(ids[0], ids[1]);
}

}  // namespace
