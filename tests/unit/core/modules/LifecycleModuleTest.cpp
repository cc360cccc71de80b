#include <chrono>
#include <limits>
#include <map>
#include <memory>
#include <string>

#include "unit/core/modules/AnalyticsFixture.h"

namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::Pair;
using TestSupport::LogLevel;
using TestSupport::ManualClock;
using Velmora::Variant;

class LifecycleModuleTest : public AnalyticsFixture {
 protected:
  LifecycleModuleTest() { UseVersion("1.0"); }

  void UseVersion(const std::string& version) {
    host.bundle->SetInfo("CFBundleShortVersionString", version);
  }
  std::shared_ptr<Velmora::DataStoreInterface> Store() const {
    return services->localStorage->GetDataStore("KorvoMobile_Lifecycle");
  }
  static std::int64_t Seconds(Velmora::Clock::TimePoint time) {
    return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
  }

  // The context data of the state after a start.
  std::map<std::string, std::string> Start() {
    core->LifecycleStart({});
    Settle();
    const auto state = witness->Services()->GetSharedEventState("lifecycle", nullptr);
    return services->jsonUtility->MapFromJsonObject(
        services->jsonUtility->CreateJsonObject(*state)->GetJsonObject("contextdata"));
  }
  void Pause() {
    core->LifecyclePause();
    Settle();
  }
  static auto IsLaunch() { return Contains(Pair("launch", "true")); }
};

TEST_F(LifecycleModuleTest, TellsOfTheDeviceAndWhatTheAppGave) {
  StartCore();
  core->LifecycleStart({{"from", "widget"}, {"runMode", "mine"}});
  Finish();
  const std::string told = DataOf(Heard(EventTypes::kLifecycle, EventSources::kResponse));
  EXPECT_THAT(told, HasSubstr("phase:\"start\""));
  EXPECT_THAT(told, HasSubstr("from:\"widget\""));
  EXPECT_THAT(told, HasSubstr("runMode:\"mine\"")) << "the app's word wins";
  EXPECT_THAT(told, HasSubstr("appName:\"" + services->systemInfo->GetApplicationName() + '"'));
  EXPECT_THAT(told, HasSubstr("device:\"" + services->systemInfo->GetDeviceName() + '"'));
}

TEST_F(LifecycleModuleTest, PublishesItsPhase) {
  StartCore();
  core->LifecycleStart({});
  Settle();
  EXPECT_THAT(StateOf("lifecycle"), HasSubstr(R"("phase":"start")"));
  core->LifecyclePause();
  Settle();
  EXPECT_EQ(StateOf("lifecycle"), R"({"phase":"pause"})");
}

TEST_F(LifecycleModuleTest, APauseWithoutAStartIsIgnored) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Lifecycle", "paused without having been started");
  core->LifecyclePause();
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kLifecycle, EventSources::kResponse), 0U);
}

TEST_F(LifecycleModuleTest, ASecondStartRenewsTheContextData) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Lifecycle",
                 "started while running; only the context data are renewed");
  core->LifecycleStart({{"a", "1"}});
  core->LifecycleStart({{"b", "2"}});
  Settle();
  EXPECT_THAT(StateOf("lifecycle"), HasSubstr(R"("b":"2")"));
  EXPECT_THAT(StateOf("lifecycle"), testing::Not(HasSubstr(R"("a":"1")")));
}

TEST_F(LifecycleModuleTest, TheFirstStartIsAnInstallAndALaunch) {
  StartCore();
  const auto context = Start();
  EXPECT_THAT(context,
              AllOf(Contains(Pair("install", "true")), IsLaunch(), Contains(Pair("launches", "1")),
                    Contains(Pair("daysSinceInstall", "0"))));
  EXPECT_THAT(context, AllOf(Not(Contains(Key("crash"))), Not(Contains(Key("upgrade")))));
  EXPECT_EQ(Store()->GetLong("InstallDate", 0), Seconds(ManualClock::kStart));
  EXPECT_EQ(Store()->GetInt("Launches", 0), 1);
  EXPECT_EQ(Store()->GetString("LastVersion", ""), "1.0");
  EXPECT_FALSE(Store()->GetBoolean("SuccessfulClose", true));
  Pause();
  EXPECT_TRUE(Store()->GetBoolean("SuccessfulClose", false));
}

TEST_F(LifecycleModuleTest, AStartWithinTheTimeoutGoesOnWithTheSession) {
  StartCore();
  Start();
  clock->Advance(100s);
  Pause();
  clock->Advance(299s);
  EXPECT_THAT(Start(), AllOf(Not(Contains(Key("launch"))), Contains(Pair("launches", "1"))));
  Pause();
  clock->Advance(299s);
  Restart();
  EXPECT_THAT(Start(), Not(Contains(Key("launch")))) << "also in another process";
  Pause();
  clock->Advance(300s);
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Contains(Pair("launches", "2")),
                             Contains(Pair("previousSessionLength", "698")),
                             Not(Contains(Key("install"))), Not(Contains(Key("crash")))));
}

TEST_F(LifecycleModuleTest, TakesTheTimeoutFromTheConfiguration) {
  StartCore();
  Configure("lifecycle.sessionTimeout", Variant::FromLong(10));
  Start();
  Pause();
  clock->Advance(9s);
  EXPECT_THAT(Start(), Not(Contains(Key("launch"))));
  Pause();
  clock->Advance(10s);
  EXPECT_THAT(Start(), IsLaunch());
  Configure("lifecycle.sessionTimeout", Variant::FromLong(0));
  Pause();
  EXPECT_THAT(Start(), IsLaunch());
}

TEST_F(LifecycleModuleTest, AnEndWithoutAPauseWasACrash) {
  StartCore();
  Start();
  const bool hasClosedWell = Store()->GetBoolean("SuccessfulClose", true);
  const std::int64_t pauseDate = Store()->GetLong("PauseDate", -1);
  Finish();
  // As it would be without an end in good order.
  Store()->SetBoolean("SuccessfulClose", hasClosedWell);
  Store()->SetLong("PauseDate", pauseDate);
  StartCore();
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Contains(Pair("crash", "true")),
                             Not(Contains(Key("previousSessionLength")))));
  Pause();
  clock->Advance(1h);
  Restart();
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Not(Contains(Key("crash")))));
}

TEST_F(LifecycleModuleTest, AnEndInGoodOrderIsAPause) {
  StartCore();
  Start();
  clock->Advance(20s);
  Finish();
  clock->Advance(1h);
  StartCore();
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Not(Contains(Key("crash"))),
                             Contains(Pair("previousSessionLength", "20"))));
}

TEST_F(LifecycleModuleTest, AnotherVersionIsAnUpgradeAndALaunch) {
  StartCore();
  Start();
  Pause();
  UseVersion("2.0");
  Restart();
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Contains(Pair("upgrade", "true")),
                             Contains(Pair("previousAppVersion", "1.0"))));
  EXPECT_EQ(Store()->GetString("LastVersion", ""), "2.0");
  Pause();
  clock->Advance(1h);
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Not(Contains(Key("upgrade")))));
}

TEST_F(LifecycleModuleTest, AnInstallDateThatWasMigratedLivesOn) {
  const std::int64_t installed = Seconds(ManualClock::kStart - 48h);
  Store()->SetLong("InstallDate", installed);
  Store()->SetString("LastVersion", "0.9");
  Store()->SetLong("LastDateUsed", Seconds(ManualClock::kStart - 25h));
  Store()->SetInt("Launches", 41);
  Store()->SetBoolean("SuccessfulClose", true);
  StartCore();
  EXPECT_THAT(Start(), AllOf(IsLaunch(), Contains(Pair("installDate", std::to_string(installed))),
                             Contains(Pair("daysSinceInstall", "2")),
                             Contains(Pair("daysSinceLastUse", "1")),
                             Contains(Pair("launches", "42")), Contains(Pair("upgrade", "true")),
                             Not(Contains(Key("install"))), Not(Contains(Key("crash")))));
  EXPECT_EQ(Store()->GetLong("InstallDate", 0), installed);
}

TEST_F(LifecycleModuleTest, KeepsItsHeadWhenStoredValuesAreOfAnotherType) {
  Store()->SetString("InstallDate", "yesterday");
  Store()->SetLong("LastDateUsed", std::numeric_limits<std::int64_t>::max());
  Store()->SetInt("Launches", -7);
  Store()->SetInt("SuccessfulClose", 1);
  StartCore();
  EXPECT_THAT(Start(),
              AllOf(IsLaunch(), Contains(Pair("launches", "1")),
                    Contains(Pair("daysSinceInstall", "0")), Not(Contains(Key("install")))));
}

TEST_F(LifecycleModuleTest, BeginsASessionWhenTheTimeOfDayWasSetBack) {
  StartCore();
  Start();
  Pause();
  clock->SetTimeOfDay(ManualClock::kStart - 1h);
  EXPECT_THAT(Start(), IsLaunch());
}

TEST_F(LifecycleModuleTest, TracksALaunchWithItsContextData) {
  StartSending();
  core->LifecycleStart({{"from", "widget"}});
  ASSERT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_THAT(Posted(), ElementsAre("lifecycle"));
  const auto hit = services->jsonUtility->CreateJsonObject(host.urlSession->Requests().at(0).body);
  EXPECT_THAT(services->jsonUtility->MapFromJsonObject(hit->GetJsonObject("contextdata")),
              AllOf(IsLaunch(), Contains(Pair("install", "true")), Contains(Pair("from", "widget")),
                    Contains(Pair("appVersion", "1.0"))));
  core->LifecyclePause();
  core->LifecycleStart({});
  EXPECT_THAT(Numbers(), ElementsAre(0, 1, 0)) << "the session goes on";
}

TEST_F(LifecycleModuleTest, FollowsSessionsWithoutADataStore) {
  services->localStorage = nullptr;
  log.AllowLines(LogLevel::Warning, "Configuration", testing::_);
  log.AllowLines(LogLevel::Warning, "Identity", testing::_);
  log.ExpectLine(LogLevel::Warning, "Lifecycle",
                 "there is no data store; sessions will not be remembered");
  StartCore();
  EXPECT_THAT(Start(), IsLaunch());
  Pause();
  EXPECT_THAT(Start(), Not(Contains(Key("launch"))));
}

TEST_F(LifecycleModuleTest, WorksWithoutSystemInformation) {
  services->systemInfo = nullptr;
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Lifecycle",
                 "there is no system information service; context data tell nothing of the device");
  core->LifecycleStart({{"a", "1"}});
  Settle();
  EXPECT_THAT(StateOf("lifecycle"), HasSubstr(R"("a":"1")"));
  EXPECT_THAT(StateOf("lifecycle"), Not(HasSubstr("osName")));
}

TEST_F(LifecycleModuleTest, ARequestFromOutsideMayBeAnything) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Lifecycle",
                 "the request \"odd\" asks for nothing that is known");
  EXPECT_EQ(Dispatch(NewEvent("odd", EventTypes::kLifecycle, EventSources::kRequest)), "");
  Settle();
}

}  // namespace
