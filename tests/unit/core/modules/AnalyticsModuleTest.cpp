#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "unit/core/hub/CoreFixture.h"

namespace {

using TestSupport::LogLevel;
using Velmora::EventData;
using Velmora::MobilePrivacyStatus;

// Counts the texts that are read as JSON.
class CountingJsonService final : public Velmora::NativeJsonUtilityService {
 public:
  using Velmora::NativeJsonUtilityService::CreateJsonObject;
  std::shared_ptr<Velmora::JsonObject> CreateJsonObject(const std::string& json) override {
    ++count;
    return Velmora::NativeJsonUtilityService::CreateJsonObject(json);
  }

  std::atomic<int> count{0};
};

class AnalyticsModuleTest : public CoreFixture {
 protected:
  void Track(const std::string& action) {
    const auto data = std::make_shared<EventData>();
    data->PutString(EventKeys::kAction, action);
    core->Track(data);
  }
};

TEST_F(AnalyticsModuleTest, PreparesWhatIsTrackedWithItsTime) {
  StartCore();
  const auto now = [] {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               Velmora::Event::Clock::now().time_since_epoch())
        .count();
  };
  const auto before = now();
  Track("buy");
  const auto after = now();
  Finish();
  const EventPointer prepared = Heard(EventTypes::kAnalytics, EventSources::kPrepared);
  EXPECT_EQ(prepared->GetData()->Get(EventKeys::kAction)->GetString(), "buy");
  const std::int64_t timestamp = prepared->GetData()->Get(EventKeys::kTimestamp)->GetLong();
  EXPECT_GE(timestamp, before);
  EXPECT_LE(timestamp, after);
}

TEST_F(AnalyticsModuleTest, FollowsThePrivacyStatusAsItStoodAtEachEvent) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Analytics", "nothing is tracked: the visitor has opted out");
  Track("before");
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  Track("never");
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  Track("after");
  Finish();
  std::vector<std::string> actions;
  for (const EventPointer& event : listener->Heard()) {
    if (event->GetSource() == EventSources::kPrepared) {
      actions.push_back(event->GetData()->Get(EventKeys::kAction)->GetString());
    }
  }
  EXPECT_THAT(actions, testing::ElementsAre("before", "after"));
}

TEST_F(AnalyticsModuleTest, ReadsEachConfigurationOnce) {
  const auto json = std::make_shared<CountingJsonService>();
  services->jsonUtility = json;
  StartCore();
  core->UpdateConfiguration({{"large", Velmora::Variant::FromString(std::string(5'000'000, 'x'))}});
  Track("one");
  Settle();
  const int before = json->count;
  for (int count = 1; count < 1'000; ++count) Track("one");
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kAnalytics, EventSources::kPrepared), 1'000U);
  EXPECT_EQ(json->count, before);
}

TEST_F(AnalyticsModuleTest, AVisitorWhoOptedOutStaysSoAfterARestart) {
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  Restart();
  log.ExpectLine(LogLevel::Debug, "Analytics", "nothing is tracked: the visitor has opted out");
  Track("never");
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kAnalytics, EventSources::kPrepared), 0U);
}

TEST_F(AnalyticsModuleTest, TracksNothingWhileTheStatusCannotBeKnown) {
  services->jsonUtility = nullptr;
  StartCore();
  log.AllowLines(LogLevel::Error, "Configuration", testing::_);
  log.ExpectLine(LogLevel::Debug, "Analytics",
                 "nothing is tracked: the privacy status is not known");
  Track("never");
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kAnalytics, EventSources::kPrepared), 0U);
}

TEST_F(AnalyticsModuleTest, TracksNothingWithoutData) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Analytics", "there was nothing to track");
  core->Track(nullptr);
  Finish();
}

}  // namespace
