// How hits are kept on the device.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "unit/core/modules/AnalyticsFixture.h"

namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::LogLevel;
using Velmora::MobilePrivacyStatus;
using Velmora::Variant;

class AnalyticsDeviceTest : public AnalyticsFixture {
 protected:
  std::filesystem::path DatabaseFile() const {
    return std::filesystem::path(services->systemInfo->GetApplicationCacheDir()) /
           "KorvoMobile_AnalyticsHits";
  }
  void TrackAll(const std::vector<std::string>& actions) {
    const auto count = [this] {
      return CountHeard(EventTypes::kAnalytics, EventSources::kPrepared);
    };
    for (const std::string& action : actions) {
      // Each in a row of its own.
      const std::size_t before = count();
      Track(action);
      EXPECT_TRUE(TestSupport::WaitUntil([&] { return count() == before + 1; }));
    }
  }
  void ExpectDropped(int tooMany, int tooOld) {
    log.ExpectLine(LogLevel::Warning, "Analytics",
                   "hits were dropped: " + std::to_string(tooMany) + " because too many waited, " +
                       std::to_string(tooOld) +
                       " because they were too old, 0 because the collector refused them");
  }
  void Send() {
    core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
    UseCollector();
  }

  // Nobody can open a directory as a database.
  void MakeDatabaseUnusable() { std::filesystem::create_directories(DatabaseFile()); }
  void ExpectUnusable() {
    log.AllowLines(LogLevel::Error, "DatabaseService", HasSubstr("failed to open"));
    log.ExpectLine(LogLevel::Warning, "Analytics",
                   "the database of hits cannot be used; new hits wait in memory: unable to open "
                   "database file");
  }
};

TEST_F(AnalyticsDeviceTest, KeepsHitsAcrossRestarts) {
  StartCore();
  TrackAll({"one", "two"});
  Restart();
  TrackAll({"three"});
  EXPECT_THAT(Numbers(), ElementsAre(3, 0, 0));
  Send();
  ASSERT_TRUE(WaitForNumbers({0, 3, 0}));
  EXPECT_THAT(Posted(), ElementsAre("one", "two", "three"));
  Restart();
  EXPECT_THAT(Numbers(), ElementsAre(0, 0, 0));
}

TEST_F(AnalyticsDeviceTest, KeepsAHitBeforeItTellsOfIt) {
  StartCore();
  Track("kept");
  ASSERT_TRUE(TestSupport::WaitUntil(
      [&] { return CountHeard(EventTypes::kAnalytics, EventSources::kPrepared) == 1; }));
  // As it would be found after a loss of power.
  const std::string copy = DatabaseFile().string() + "_copy";
  std::filesystem::copy_file(DatabaseFile(), copy);
  EXPECT_NE(TestSupport::ReadFileBytes(copy).find(R"("action": "kept")"), std::string::npos);
}

TEST_F(AnalyticsDeviceTest, DeletesWhatAnEarlierStartLeftOfAVisitorWhoHasOptedOut) {
  StartCore();
  TrackAll({"old"});
  Finish();
  services->localStorage->GetDataStore("KorvoMobile_ConfigState")->SetInt("PrivacyStatus", 1);
  StartCore();
  EXPECT_THAT(Numbers(), ElementsAre(0, 0, 0));
  Send();
  EXPECT_THAT(Numbers(), ElementsAre(0, 0, 0));
}

TEST_F(AnalyticsDeviceTest, DropsTheOldestBeyondTheConfiguredNumber) {
  StartCore();
  Configure("analytics.maxHits", Variant::FromLong(3));
  TrackAll({"a", "b", "c", "d", "e"});
  EXPECT_THAT(Numbers(), ElementsAre(3, 0, 2));
  EXPECT_EQ(StateOf("analytics"), R"({"dropped":2})");
  ExpectDropped(2, 0);
  Send();
  ASSERT_TRUE(WaitForNumbers({0, 3, 2}));
  EXPECT_THAT(Posted(), ElementsAre("c", "d", "e"));
}

TEST_F(AnalyticsDeviceTest, DropsPartOfARowThatWasWrittenAtOnce) {
  StartCore();
  Configure("analytics.maxHits", Variant::FromLong(150));
  core->Start(nullptr);
  for (int count = 0; count < 250; ++count) Track(std::to_string(count));
  EXPECT_THAT(Numbers().at(0), testing::Le(150));
  const std::int64_t kept = Numbers().at(0);
  EXPECT_GT(kept, 140);
  log.AllowLines(LogLevel::Warning, "Analytics", HasSubstr("hits were dropped"));
  Send();
  ASSERT_TRUE(WaitForNumbers({0, kept, 250 - kept}));
  EXPECT_EQ(Posted().front(), std::to_string(250 - kept));
  EXPECT_EQ(Posted().back(), "249");
}

TEST_F(AnalyticsDeviceTest, DropsAtOnceWhenTheNumberIsLowered) {
  StartCore();
  TrackAll({"a", "b", "c"});
  Configure("analytics.maxHits", Variant::FromLong(1));
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 2));
  ExpectDropped(2, 0);
}

TEST_F(AnalyticsDeviceTest, DropsWhatIsTooOld) {
  StartCore();
  Configure("analytics.maxAge", Variant::FromLong(3600));
  TrackAll({"old"});
  clock->Advance(30min);
  TrackAll({"young"});
  clock->Advance(31min);
  ExpectDropped(0, 1);
  Send();
  ASSERT_TRUE(WaitForNumbers({0, 1, 1}));
  EXPECT_THAT(Posted(), ElementsAre("young"));
}

TEST_F(AnalyticsDeviceTest, IgnoresLimitsThatAreNoNumbers) {
  StartCore();
  for (const char* key : {"analytics.maxHits", "analytics.maxAge", "analytics.timeout"}) {
    log.AllowLines(
        LogLevel::Warning, "Analytics",
        std::string("the member \"") + key + "\" of the configuration is no number and is ignored");
    Configure(key, Variant::FromString("many"));
  }
  log.ExpectLine(
      LogLevel::Warning, "Analytics",
      "the member \"analytics.collector\" of the configuration is no text and is ignored");
  Configure("analytics.collector", Variant::FromLong(1));
  TrackAll({"kept"});
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
}

TEST_F(AnalyticsDeviceTest, RefusesAHitThatIsTooLong) {
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Analytics",
                 testing::StartsWith("what was tracked is too long to be sent: "));
  Track(std::string(70'000, 'x'));
  Track(std::string(60'000, 'x'));
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
}

TEST_F(AnalyticsDeviceTest, WaitsInMemoryWithoutADatabaseService) {
  services->database = nullptr;
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Analytics",
                 "the database of hits cannot be used; new hits wait in memory: there is no "
                 "database service");
  TrackAll({"one", "two"});
  EXPECT_THAT(Numbers(), ElementsAre(2, 0, 0));
  Send();
  EXPECT_TRUE(WaitForNumbers({0, 2, 0}));
  EXPECT_THAT(Posted(), ElementsAre("one", "two"));
}

TEST_F(AnalyticsDeviceTest, BoundsWhatWaitsInMemoryToo) {
  services->database = nullptr;
  StartCore();
  log.AllowLines(LogLevel::Warning, "Analytics", HasSubstr("wait in memory"));
  Configure("analytics.maxHits", Variant::FromLong(2));
  Configure("analytics.maxAge", Variant::FromLong(3600));
  TrackAll({"a", "b", "c"});
  EXPECT_THAT(Numbers(), ElementsAre(2, 0, 1));
  clock->Advance(2h);
  ExpectDropped(1, 2);
  Send();
  EXPECT_TRUE(WaitForNumbers({0, 0, 3}));
}

TEST_F(AnalyticsDeviceTest, BoundsTheBytesThatWaitInMemory) {
  services->database = nullptr;
  StartCore();
  log.AllowLines(LogLevel::Warning, "Analytics", HasSubstr("wait in memory"));
  log.AllowLines(LogLevel::Warning, "Analytics", HasSubstr("hits were dropped"));
  for (int count = 0; count < 200; ++count) Track(std::string(60'000, 'x'));
  const std::vector<std::int64_t> numbers = Numbers();
  EXPECT_EQ(numbers.at(0) + numbers.at(2), 200);
  EXPECT_THAT(numbers.at(0) * 60'000, AllOf(testing::Gt(7'000'000), testing::Lt(8'400'000)));
}

TEST_F(AnalyticsDeviceTest, BringsHitsIntoTheDatabaseOnceItCanBeUsed) {
  MakeDatabaseUnusable();
  StartCore();
  ExpectUnusable();
  TrackAll({"one", "two"});
  EXPECT_THAT(Numbers(), ElementsAre(2, 0, 0));
  std::filesystem::remove(DatabaseFile());
  TrackAll({"three"});
  EXPECT_FALSE(std::filesystem::exists(DatabaseFile())) << "it is not tried all the time";
  clock->Advance(1min);
  TrackAll({"four"});
  EXPECT_TRUE(std::filesystem::exists(DatabaseFile()));
  Restart();
  EXPECT_THAT(Numbers(), ElementsAre(4, 0, 0));
  Send();
  ASSERT_TRUE(WaitForNumbers({0, 4, 0}));
  EXPECT_THAT(Posted(), ElementsAre("one", "two", "three", "four"));
}

TEST_F(AnalyticsDeviceTest, LosesNoHitWhicheverCallOfItsDatabaseFails) {
  using TestSupport::SqliteFault;
  log.AllowLines(LogLevel::Debug, "MockDatabaseService", testing::_);
  log.AllowLines(LogLevel::Error, "DatabaseService", HasSubstr("failed to open"));
  log.AllowLines(LogLevel::Warning, "Analytics", HasSubstr("cannot be used"));
  StartCore();
  std::vector<std::string> tracked;
  for (const SqliteFault fault :
       {SqliteFault::Error, SqliteFault::Busy, SqliteFault::DiskFull, SqliteFault::ShortWrite}) {
    std::size_t failed = 1;
    for (std::size_t number = 1; failed > 0; ++number) {
      vfs.FailCall(number, fault, TestSupport::FaultySqliteVfs::Duration::FromThenOn);
      const std::string name = std::to_string(tracked.size());
      TrackAll({"first " + name, "second " + name});
      tracked.insert(tracked.end(), {"first " + name, "second " + name});
      failed = vfs.FailedCalls();
      vfs.Heal();
      clock->Advance(1min);
      // Brings into the database what waits in memory.
      EXPECT_THAT(Numbers().at(0), testing::Ge(tracked.size()));
    }
  }
  EXPECT_GT(tracked.size(), 100U) << "too few calls have failed";
  Restart();
  Send();
  ASSERT_TRUE(TestSupport::WaitUntil([&] { return Numbers().at(0) == 0; }));
  // A row that was written although that was said to have failed comes twice, under the same ids.
  std::vector<std::string> actions;
  std::set<std::string> ids;
  const std::vector<std::string> posted = Posted();
  const std::vector<std::string> postedIds = Posted(EventKeys::kHitId);
  for (std::size_t index = 0; index < posted.size(); ++index) {
    if (ids.insert(postedIds.at(index)).second) actions.push_back(posted.at(index));
  }
  EXPECT_EQ(actions, tracked);
}

TEST_F(AnalyticsDeviceTest, SendsEveryHitWhicheverCallOfItsDatabaseFails) {
  log.AllowLines(LogLevel::Debug, "MockDatabaseService", testing::_);
  log.AllowLines(LogLevel::Warning, "Analytics", HasSubstr("cannot be used"));
  StartCore();
  UseCollector();
  std::set<std::string> tracked;
  std::size_t failed = 1;
  for (std::size_t number = 1; failed > 0; ++number) {
    core->SetPrivacyStatus(MobilePrivacyStatus::Unknown);
    const std::string name = std::to_string(number);
    TrackAll({"first " + name, "second " + name});
    tracked.insert({"first " + name, "second " + name});
    vfs.FailCall(number, TestSupport::SqliteFault::Error,
                 TestSupport::FaultySqliteVfs::Duration::FromThenOn);
    core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
    // Until the sender has nothing more to do, or waits for the database.
    ASSERT_TRUE(TestSupport::WaitUntil([&] {
      return Numbers().at(0) == 0 &&
             (clock->Waits().empty() ||
              clock->Waits() == std::vector<std::chrono::milliseconds>{1min});
    }));
    failed = vfs.FailedCalls();
    vfs.Heal();
    clock->Advance(1min);
    ASSERT_TRUE(
        TestSupport::WaitUntil([&] { return Numbers().at(0) == 0 && clock->Waits().empty(); }));
  }
  EXPECT_GT(tracked.size(), 40U) << "too few calls have failed";
  const std::vector<std::string> posted = Posted();
  EXPECT_EQ(std::set<std::string>(posted.begin(), posted.end()), tracked);
}

TEST_F(AnalyticsDeviceTest, TriesTheDatabaseOnceMoreBeforeTheEnd) {
  MakeDatabaseUnusable();
  StartCore();
  ExpectUnusable();
  TrackAll({"kept"});
  std::filesystem::remove(DatabaseFile());
  clock->Advance(1min);
  Restart();
  EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
}

TEST_F(AnalyticsDeviceTest, MakesADamagedDatabaseAnew) {
  for (const std::string& rubbish :
       {std::string(5'000, 'x'), "SQLite format 3" + std::string(5'000, '\0')}) {
    std::filesystem::create_directories(DatabaseFile().parent_path());
    std::ofstream(DatabaseFile()) << rubbish;
    log.AllowLines(LogLevel::Debug, "MockDatabaseService", testing::_);
    log.ExpectLine(LogLevel::Warning, "Analytics",
                   testing::StartsWith("the database of hits is damaged and is made anew: "));
    services->database = Velmora::CreateNativeDatabaseService(services->systemInfo);
    StartCore();
    TrackAll({"kept"});
    Restart();
    EXPECT_THAT(Numbers(), ElementsAre(1, 0, 0));
    Finish();
  }
}

TEST_F(AnalyticsDeviceTest, DeletesLaterWhatCannotBeDeletedAtAnOptOut) {
  StartCore();
  TrackAll({"before"});
  Finish();
  const std::filesystem::path aside = DatabaseFile().string() + "_aside";
  std::filesystem::rename(DatabaseFile(), aside);
  MakeDatabaseUnusable();
  services->database = Velmora::CreateNativeDatabaseService(services->systemInfo);
  ExpectUnusable();
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  Send();
  Settle();
  std::filesystem::remove(DatabaseFile());
  std::filesystem::rename(aside, DatabaseFile());
  clock->Advance(1min);
  Track("after");
  EXPECT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_THAT(Posted(), ElementsAre("after"));
}

}  // namespace
