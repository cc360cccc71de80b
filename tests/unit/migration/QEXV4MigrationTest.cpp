#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "VelmoraCore/LocalStorageServiceInterface.h"
#include "interop/AppInfo.h"
#include "migration/QEXV4Migration.h"
#include "services/datastore/NativeLocalStorageService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace {

using Platform::NumberType;
using Platform::Value;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::LogLine;
using Velmora::AppInfo;

Value DateOf(double seconds) {
  return Value::FromObject(std::make_shared<Platform::Date>(seconds));
}

const std::vector<std::string> kLogMessages = {
    "Migrating Korvo SDK v4 NSUserDefaults for use with Korvo SDK v5.",
    "Migrating complete for Acquisition data.",
    "Migrating complete for Analytics data.",
    "Migrating complete for Lumbrex data.",
    "Migrating complete for Identity (Visitor ID Service) data.",
    "Migrating complete for Lifecycle data.",
    "Migrating complete for Quorvel data.",
    "Full migrating of NSUserDefaults successful.",
};

const std::vector<std::string> kV4Keys = {
    "KRVAcquisitionData",
    "KORVOMOBILE_STOREDDEFAULTS_AID",
    "KORVOMOBILE_STOREDDEFAULTS_IGNOREAID",
    "KORVOMOBILE_STOREDDEFAULTS_AIDSYNCED",
    "KRVMobileLastTimestamp",
    "ANALYTICS_WORKER_CURRENT_ID",
    "ANALYTICS_WORKER_CURRENT_STAMP",
    "LBXUserId",
    "LBXUserProfile",
    "KRVMOBILE_PERSISTED_MID",
    "KRVMOBILE_PERSISTED_MID_HINT",
    "KRVMOBILE_PERSISTED_MID_BLOB",
    "KRVMOBILE_VISITORID_IDS",
    "KRVMOBILE_KEY_PUSH_ENABLED",
    "ZOMS_Mensurix_StoredDefaults_VisitorID",
    "KRVMOBILE_VISITORID_TTL",
    "KRVMOBILE_VISITORID_SYNCTIME",
    "KRVMOBILE_KEY_PUSH_TOKEN",
    "VRCK1",
    "VRCK2",
    "VRCK5",
    "VRCK6",
    "VRCK7",
    "ZVMS_LifecycleData",
    "ZVMS_START",
    "KORVOMOBILE_STOREDDEFAULTS_APPID",
    "KORVOMOBILE_STOREDDEFAULTS_OS",
    "ZVMS_PAUSE",
    "VRCK3",
    "VRCK4",
    "KRVMOBILE_QUORVEL_QVL_ID",
    "KRVMOBILE_QUORVEL_3RD_PARTY_ID",
    "KRVMOBILE_QUORVEL_DATA_MIGRATED",
};

using Contents = std::map<std::string, Value>;

// What every migration writes that finds nothing but the install date, second 0.
Contents NothingButDefaults() {
  return {
      {"Korvo.AnalyticsDataStorage.KORVOMOBILE_STOREDDEFAULTS_AID", ""},
      {"Korvo.AnalyticsDataStorage.KORVOMOBILE_STOREDDEFAULTS_IGNORE_AID", false},
      {"Korvo.LBXDataStore.LBXUserId", ""},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PERSISTED_MID", ""},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PERSISTED_MID_HINT", ""},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PERSISTED_MID_BLOB", ""},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_VISITORID_IDS", ""},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PUSH_ENABLED", false},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_VISITOR_ID", ""},
      {"Korvo.KorvoMobile_Lifecycle.InstallDate", 0},
      {"Korvo.KorvoMobile_Lifecycle.LastVersion", ""},
      {"Korvo.KorvoMobile_Lifecycle.LastDateUsed", 0},
      {"Korvo.KorvoMobile_Lifecycle.Launches", 0},
      {"Korvo.KorvoMobile_Lifecycle.SuccessfulClose", false},
      {"Korvo.KORVOMOBILE_QUORVEL.QVL_ID", ""},
      {"Korvo.KORVOMOBILE_QUORVEL.THIRD_PARTY_ID", ""},
  };
}

Contents ContentsOf(const Platform::UserDefaults& defaults) {
  Contents contents;
  for (const std::string& key : defaults.KeysWithPrefix("")) {
    contents[key] = defaults.ObjectForKey(key);
  }
  return contents;
}

class QEXV4MigrationTest : public testing::Test {
 protected:
  ~QEXV4MigrationTest() override { AppInfo::SetAppGroup(std::nullopt); }

  TestSupport::FakeHost host_;
  TestSupport::LogCapture log_;
  std::shared_ptr<Platform::UserDefaults> defaults_ = host_.userDefaults->Standard();

  void ExpectTheLinesOfAMigration() {
    std::vector<LogLine> lines;
    for (const std::string& message : kLogMessages) {
      lines.push_back({LogLevel::Debug, "Configuration", message});
    }
    EXPECT_EQ(log_.TakeLines(), lines);
  }

  static std::shared_ptr<Velmora::DataStoreInterface> Store(const std::string& name) {
    return Velmora::CreateNativeLocalStorageService()->GetDataStore(name);
  }

  void ExpectNoV4Keys() {
    for (const std::string& key : kV4Keys) {
      EXPECT_TRUE(defaults_->ObjectForKey(key).IsAbsent()) << key;
    }
  }
};

TEST_F(QEXV4MigrationTest, DoesNothingWithoutTheInstallDateWhateverElseIsThere) {
  for (const std::string& key : kV4Keys) {
    if (key != "VRCK1") defaults_->SetObject(key, "left");
  }
  const Contents before = ContentsOf(*defaults_);

  EXPECT_FALSE(QEXV4Migration::defaultsNeedToMigrate());
  QEXV4Migration::migrate();

  EXPECT_EQ(ContentsOf(*defaults_), before);
  EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(QEXV4MigrationTest, WritesEveryKeyWhenOnlyTheInstallDateIsThere) {
  defaults_->SetObject("VRCK1", DateOf(1500000000.75));
  EXPECT_TRUE(QEXV4Migration::defaultsNeedToMigrate());

  QEXV4Migration::migrate();

  Contents expected = NothingButDefaults();
  expected["Korvo.KorvoMobile_Lifecycle.InstallDate"] = 1500000000;
  EXPECT_EQ(ContentsOf(*defaults_), expected);
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, WritesEachKeyWithTheTypeThatItsReaderAsksFor) {
  defaults_->SetObject("VRCK1", DateOf(1500000000));
  QEXV4Migration::migrate();
  const auto type = [this](const std::string& key) {
    return defaults_->ObjectForKey("Korvo.KorvoMobile_Lifecycle." + key).StorageType();
  };
  EXPECT_EQ(type("InstallDate"), NumberType::SInt64);
  EXPECT_EQ(type("LastDateUsed"), NumberType::SInt64);
  EXPECT_EQ(type("Launches"), NumberType::SInt32);
  EXPECT_EQ(Store("KorvoMobile_Lifecycle")->GetLong("InstallDate", 0), 1500000000);
  EXPECT_FALSE(Store("KorvoMobile_Lifecycle")->GetBoolean("SuccessfulClose", true));
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, MovesEveryItem) {
  defaults_->SetObject("KORVOMOBILE_STOREDDEFAULTS_AID", "aid");
  defaults_->SetObject("KORVOMOBILE_STOREDDEFAULTS_IGNOREAID", true);
  defaults_->SetObject("LBXUserId", "lumbrex");
  defaults_->SetObject("KRVMOBILE_PERSISTED_MID", "mid");
  defaults_->SetObject("KRVMOBILE_PERSISTED_MID_HINT", 9);
  defaults_->SetObject("KRVMOBILE_PERSISTED_MID_BLOB", "blob");
  defaults_->SetObject("KRVMOBILE_VISITORID_IDS", "ids");
  defaults_->SetObject("KRVMOBILE_KEY_PUSH_ENABLED", "YES");
  defaults_->SetObject("ZOMS_Mensurix_StoredDefaults_VisitorID", "visitor");
  defaults_->SetObject("VRCK1", DateOf(1500000000.999));
  defaults_->SetObject("VRCK2", "4.2");
  defaults_->SetObject("VRCK5", DateOf(-1.5));
  defaults_->SetObject("VRCK6", 12);
  defaults_->SetObject("VRCK7", 1);
  defaults_->SetObject("KRVMOBILE_QUORVEL_QVL_ID", "qvl");
  defaults_->SetObject("KRVMOBILE_QUORVEL_3RD_PARTY_ID", "third");
  defaults_->SetObject("unrelated", "stays");

  QEXV4Migration::migrate();

  const Contents expected = {
      {"Korvo.AnalyticsDataStorage.KORVOMOBILE_STOREDDEFAULTS_AID", "aid"},
      {"Korvo.AnalyticsDataStorage.KORVOMOBILE_STOREDDEFAULTS_IGNORE_AID", true},
      {"Korvo.LBXDataStore.LBXUserId", "lumbrex"},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PERSISTED_MID", "mid"},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PERSISTED_MID_HINT", "9"},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PERSISTED_MID_BLOB", "blob"},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_VISITORID_IDS", "ids"},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_PUSH_ENABLED", true},
      {"Korvo.visitorIDServiceDataStore.KORVOMOBILE_VISITOR_ID", "visitor"},
      {"Korvo.KorvoMobile_Lifecycle.InstallDate", 1500000000},
      {"Korvo.KorvoMobile_Lifecycle.LastVersion", "4.2"},
      {"Korvo.KorvoMobile_Lifecycle.LastDateUsed", -1},
      {"Korvo.KorvoMobile_Lifecycle.Launches", 12},
      {"Korvo.KorvoMobile_Lifecycle.SuccessfulClose", true},
      {"Korvo.KORVOMOBILE_QUORVEL.QVL_ID", "qvl"},
      {"Korvo.KORVOMOBILE_QUORVEL.THIRD_PARTY_ID", "third"},
      {"unrelated", "stays"},
  };
  EXPECT_EQ(ContentsOf(*defaults_), expected);
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, RemovesEveryKeyOfTheFormerGeneration) {
  for (const std::string& key : kV4Keys) defaults_->SetObject(key, "left");
  QEXV4Migration::migrate();
  ExpectNoV4Keys();
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, KeepsTheLow32BitsOfTheLaunches) {
  defaults_->SetObject("VRCK1", DateOf(0));
  defaults_->SetObject("VRCK6", std::int64_t{4294967297});
  QEXV4Migration::migrate();
  EXPECT_EQ(Store("KorvoMobile_Lifecycle")->GetInt("Launches", 0), 1);
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, StoresTheAcquisitionDataAsCompactJson) {
  defaults_->SetObject("VRCK1", DateOf(0));
  defaults_->SetObject("KRVAcquisitionData", Value{{"campaign", "spring"}});
  QEXV4Migration::migrate();
  EXPECT_EQ(Store("Acquisition")->GetString("ZVMS_Referrer_ContextData_Json_String", ""),
            R"({"campaign":"spring"})");
  ExpectNoV4Keys();
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, DropsAcquisitionDataThatIsEmptyNoDictionaryOrNoJson) {
  const Value unserialisable = {{"when", DateOf(1)}};
  for (const Value& data : {Value::Dictionary(), Value::Array({"a"}), Value("text"), unserialisable,
                            Value{{"text", "\xFF"}}}) {
    defaults_->SetObject("VRCK1", DateOf(0));
    defaults_->SetObject("KRVAcquisitionData", data);
    QEXV4Migration::migrate();
    EXPECT_FALSE(Store("Acquisition")->Contains("ZVMS_Referrer_ContextData_Json_String"))
        << data.Description();
    ExpectNoV4Keys();
    ExpectTheLinesOfAMigration();
  }
}

TEST_F(QEXV4MigrationTest, CountsAnInstallDateThatIsNoDateAsSecondZero) {
  defaults_->SetObject("VRCK1", "yesterday");
  EXPECT_TRUE(QEXV4Migration::defaultsNeedToMigrate());
  QEXV4Migration::migrate();
  EXPECT_EQ(ContentsOf(*defaults_), NothingButDefaults());
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, HappensOnce) {
  defaults_->SetObject("VRCK1", DateOf(1500000000));
  QEXV4Migration::migrate();
  ExpectTheLinesOfAMigration();
  Store("LBXDataStore")->SetString("LBXUserId", "of this generation");
  const Contents before = ContentsOf(*defaults_);

  EXPECT_FALSE(QEXV4Migration::defaultsNeedToMigrate());
  QEXV4Migration::migrate();

  EXPECT_EQ(ContentsOf(*defaults_), before);
  EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

TEST_F(QEXV4MigrationTest, BeginsAnewAfterAMigrationThatWasCutShort) {
  // As after a stop between the Lumbrex and the identity step.
  defaults_->SetObject("VRCK1", DateOf(1500000000));
  Store("LBXDataStore")->SetString("LBXUserId", "moved");
  defaults_->SetObject("KRVMOBILE_PERSISTED_MID", "mid");

  QEXV4Migration::migrate();

  EXPECT_EQ(Store("LBXDataStore")->GetString("LBXUserId", "fallback"), "");
  EXPECT_EQ(Store("visitorIDServiceDataStore")->GetString("KORVOMOBILE_PERSISTED_MID", ""), "mid");
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, ReadsTheSuiteOfTheGroupAndNotTheStandardDefaults) {
  AppInfo::SetAppGroup("group.shop");
  const auto suite = host_.userDefaults->OpenSuite("group.shop");
  EXPECT_EQ(QEXV4Migration::getV4Defaults(), suite);
  suite->SetObject("VRCK1", DateOf(5));
  suite->SetObject("LBXUserId", "of the group");
  defaults_->SetObject("LBXUserId", "of the app");

  QEXV4Migration::migrate();

  EXPECT_EQ(suite->ObjectForKey("Korvo.LBXDataStore.LBXUserId"), Value("of the group"));
  EXPECT_TRUE(suite->ObjectForKey("LBXUserId").IsAbsent());
  EXPECT_EQ(defaults_->ObjectForKey("LBXUserId"), Value("of the app"));
  ExpectTheLinesOfAMigration();
}

TEST_F(QEXV4MigrationTest, ReadsTheStandardDefaultsForAnEmptyGroup) {
  AppInfo::SetAppGroup("");
  EXPECT_EQ(QEXV4Migration::getV4Defaults(), defaults_);
  AppInfo::SetAppGroup(std::nullopt);
  EXPECT_EQ(QEXV4Migration::getV4Defaults(), defaults_);
}

TEST_F(QEXV4MigrationTest, HasNothingToMigrateWhereTheSuiteOfTheGroupCannotBeOpened) {
  defaults_->SetObject("VRCK1", DateOf(5));
  host_.userDefaults->SetSupportsSuites(false);
  AppInfo::SetAppGroup("group.shop");
  EXPECT_EQ(QEXV4Migration::getV4Defaults(), nullptr);
  EXPECT_FALSE(QEXV4Migration::defaultsNeedToMigrate());
  QEXV4Migration::migrate();
  EXPECT_THAT(log_.TakeLines(), IsEmpty());
}

}  // namespace
