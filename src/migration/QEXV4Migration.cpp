#include "migration/QEXV4Migration.h"

#include <optional>
#include <span>
#include <string>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/LocalStorageServiceInterface.h"
#include "VelmoraCore/Log.h"
#include "interop/AppInfo.h"
#include "migration/UserDefaultsReading.h"
#include "migration/V5DataStores.h"
#include "services/datastore/NativeLocalStorageService.h"

namespace {

using Platform::UserDefaults;
using Velmora::DataStoreInterface;
using Velmora::LocalStorageServiceInterface;
using Velmora::Log;
namespace V5DataStores = Velmora::V5DataStores;

constexpr const char* kLogTag = "Configuration";
constexpr const char* kInstallDate = "VRCK1";
constexpr const char* kAcquisitionData = "KRVAcquisitionData";
constexpr const char* kAcquisitionJson = "ZVMS_Referrer_ContextData_Json_String";

enum class CopyAs { Text, Boolean, LowInteger, DateSeconds };

struct Copy {
  const char* v4Key;
  CopyAs as;
  const char* v5Key;
};

// What one module of this generation takes over from v4.
struct Step {
  const char* subject;
  const char* dataStore;
  std::span<const Copy> copies;
  std::span<const char* const> removedKeys;
};

constexpr Copy kAnalyticsCopies[] = {
    {"KORVOMOBILE_STOREDDEFAULTS_AID", CopyAs::Text, "KORVOMOBILE_STOREDDEFAULTS_AID"},
    {"KORVOMOBILE_STOREDDEFAULTS_IGNOREAID", CopyAs::Boolean,
     "KORVOMOBILE_STOREDDEFAULTS_IGNORE_AID"},
};
constexpr const char* kAnalyticsRemoved[] = {
    "KORVOMOBILE_STOREDDEFAULTS_AID",       "KORVOMOBILE_STOREDDEFAULTS_IGNOREAID",
    "KORVOMOBILE_STOREDDEFAULTS_AIDSYNCED", "KRVMobileLastTimestamp",
    "ANALYTICS_WORKER_CURRENT_ID",          "ANALYTICS_WORKER_CURRENT_STAMP",
};

constexpr Copy kLumbrexCopies[] = {
    {"LBXUserId", CopyAs::Text, "LBXUserId"},
};
constexpr const char* kLumbrexRemoved[] = {"LBXUserId", "LBXUserProfile"};

constexpr Copy kIdentityCopies[] = {
    {"KRVMOBILE_PERSISTED_MID", CopyAs::Text, "KORVOMOBILE_PERSISTED_MID"},
    {"KRVMOBILE_PERSISTED_MID_HINT", CopyAs::Text, "KORVOMOBILE_PERSISTED_MID_HINT"},
    {"KRVMOBILE_PERSISTED_MID_BLOB", CopyAs::Text, "KORVOMOBILE_PERSISTED_MID_BLOB"},
    {"KRVMOBILE_VISITORID_IDS", CopyAs::Text, "KORVOMOBILE_VISITORID_IDS"},
    {"KRVMOBILE_KEY_PUSH_ENABLED", CopyAs::Boolean, "KORVOMOBILE_PUSH_ENABLED"},
    {"ZOMS_Mensurix_StoredDefaults_VisitorID", CopyAs::Text, "KORVOMOBILE_VISITOR_ID"},
};
constexpr const char* kIdentityRemoved[] = {
    "KRVMOBILE_PERSISTED_MID",      "KRVMOBILE_PERSISTED_MID_HINT",
    "KRVMOBILE_PERSISTED_MID_BLOB", "KRVMOBILE_VISITORID_IDS",
    "KRVMOBILE_KEY_PUSH_ENABLED",   "ZOMS_Mensurix_StoredDefaults_VisitorID",
    "KRVMOBILE_VISITORID_TTL",      "KRVMOBILE_VISITORID_SYNCTIME",
    "KRVMOBILE_KEY_PUSH_TOKEN",
};

constexpr Copy kLifecycleCopies[] = {
    {kInstallDate, CopyAs::DateSeconds, "InstallDate"}, {"VRCK2", CopyAs::Text, "LastVersion"},
    {"VRCK5", CopyAs::DateSeconds, "LastDateUsed"},     {"VRCK6", CopyAs::LowInteger, "Launches"},
    {"VRCK7", CopyAs::Boolean, "SuccessfulClose"},
};
constexpr const char* kLifecycleRemoved[] = {
    kInstallDate,
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
};

constexpr Copy kQuorvelCopies[] = {
    {"KRVMOBILE_QUORVEL_QVL_ID", CopyAs::Text, "QVL_ID"},
    {"KRVMOBILE_QUORVEL_3RD_PARTY_ID", CopyAs::Text, "THIRD_PARTY_ID"},
};
constexpr const char* kQuorvelRemoved[] = {
    "KRVMOBILE_QUORVEL_QVL_ID",
    "KRVMOBILE_QUORVEL_3RD_PARTY_ID",
    "KRVMOBILE_QUORVEL_DATA_MIGRATED",
};

constexpr Step kSteps[] = {
    {"Analytics", V5DataStores::kAnalytics, kAnalyticsCopies, kAnalyticsRemoved},
    {"Lumbrex", V5DataStores::kLumbrex, kLumbrexCopies, kLumbrexRemoved},
    {"Identity (Visitor ID Service)", V5DataStores::kIdentity, kIdentityCopies, kIdentityRemoved},
    {"Lifecycle", V5DataStores::kLifecycle, kLifecycleCopies, kLifecycleRemoved},
    {"Quorvel", V5DataStores::kQuorvel, kQuorvelCopies, kQuorvelRemoved},
};

void LogCompletion(const char* subject) {
  Log::Debug(kLogTag, "Migrating complete for %s data.", subject);
}

void MigrateAcquisition(UserDefaults& v4, LocalStorageServiceInterface& storage) {
  const Platform::Value data = v4.ObjectForKey(kAcquisitionData);
  if (data.IsDictionary() && data.Count() > 0) {
    const std::optional<std::string> json = Platform::Host::Current()->jsonSerialization->Serialize(
        data, Platform::JsonLayout::Compact, nullptr);
    if (json) storage.GetDataStore(V5DataStores::kAcquisition)->SetString(kAcquisitionJson, *json);
  }
  v4.RemoveObject(kAcquisitionData);
  LogCompletion("Acquisition");
}

// Writes in any case: a missing v4 item arrives as an empty text, 0 or false.
void CopyItem(const Copy& copy, const UserDefaults& v4, DataStoreInterface& dataStore) {
  switch (copy.as) {
    case CopyAs::Text:
      dataStore.SetString(copy.v5Key, Velmora::StringForKey(v4, copy.v4Key).value_or(""));
      return;
    case CopyAs::Boolean:
      dataStore.SetBoolean(copy.v5Key, Velmora::BoolForKey(v4, copy.v4Key));
      return;
    case CopyAs::LowInteger:
      dataStore.SetInt(copy.v5Key,
                       static_cast<std::int32_t>(Velmora::IntegerForKey(v4, copy.v4Key)));
      return;
    case CopyAs::DateSeconds:
      dataStore.SetLong(copy.v5Key, Velmora::DateSecondsForKey(v4, copy.v4Key));
      return;
  }
}

void Migrate(const Step& step, UserDefaults& v4, LocalStorageServiceInterface& storage) {
  const auto dataStore = storage.GetDataStore(step.dataStore);
  for (const Copy& copy : step.copies) CopyItem(copy, v4, *dataStore);
  for (const char* key : step.removedKeys) v4.RemoveObject(key);
  LogCompletion(step.subject);
}

bool NeedsToMigrate(const std::shared_ptr<UserDefaults>& v4) {
  return v4 && !v4->ObjectForKey(kInstallDate).IsAbsent();
}

}  // namespace

std::shared_ptr<UserDefaults> QEXV4Migration::getV4Defaults() {
  const auto provider = Platform::Host::Current()->userDefaults;
  const std::string group = Velmora::AppInfo::GetAppGroup().value_or("");
  return group.empty() ? provider->Standard() : provider->OpenSuite(group);
}

bool QEXV4Migration::defaultsNeedToMigrate() { return NeedsToMigrate(getV4Defaults()); }

void QEXV4Migration::migrate() {
  const std::shared_ptr<UserDefaults> v4 = getV4Defaults();
  if (!NeedsToMigrate(v4)) return;

  Log::Debug(kLogTag, "Migrating Korvo SDK v4 NSUserDefaults for use with Korvo SDK v5.");
  const auto storage = Velmora::CreateNativeLocalStorageService();
  MigrateAcquisition(*v4, *storage);
  for (const Step& step : kSteps) Migrate(step, *v4, *storage);
  Log::Debug(kLogTag, "Full migrating of NSUserDefaults successful.");
}
