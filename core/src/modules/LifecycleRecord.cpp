#include "modules/LifecycleRecord.h"

#include <algorithm>
#include <limits>

#include "VelmoraCore/StringUtils.h"

namespace Velmora {
namespace {

constexpr const char* kInstallDate = "InstallDate";
constexpr const char* kLastVersion = "LastVersion";
constexpr const char* kLastDateUsed = "LastDateUsed";
constexpr const char* kLaunches = "Launches";
constexpr const char* kSuccessfulClose = "SuccessfulClose";
constexpr const char* kStartDate = "StartDate";
constexpr const char* kPauseDate = "PauseDate";

std::shared_ptr<Variant> Number(std::int64_t number) {
  return Variant::FromString(StringUtils::ToString(number));
}

std::shared_ptr<Variant> Days(std::int64_t from, std::int64_t to) {
  constexpr std::int64_t kSecondsOfDay = std::int64_t{24} * 3600;
  return Number(std::max<std::int64_t>((to - from) / kSecondsOfDay, 0));
}

std::int64_t TimeIn(const DataStoreInterface& store, const char* key) {
  // Nothing sensible is later, and sums must not overflow.
  constexpr std::int64_t kLatest = std::numeric_limits<std::int32_t>::max() * std::int64_t{1000};
  return std::clamp<std::int64_t>(store.GetLong(key, 0), 0, kLatest);
}

}  // namespace

LifecycleRecord LifecycleRecord::Load(const DataStoreInterface& store) {
  LifecycleRecord record;
  record.installDate_ = TimeIn(store, kInstallDate);
  record.lastDateUsed_ = TimeIn(store, kLastDateUsed);
  record.startDate_ = TimeIn(store, kStartDate);
  record.pauseDate_ = TimeIn(store, kPauseDate);
  record.launches_ = std::max(store.GetInt(kLaunches, 0), 0);
  record.lastVersion_ = store.GetString(kLastVersion, "");
  record.hasClosedWell_ = store.GetBoolean(kSuccessfulClose, false);
  return record;
}

void LifecycleRecord::Save(DataStoreInterface& store) const {
  store.SetLong(kInstallDate, installDate_);
  store.SetLong(kLastDateUsed, lastDateUsed_);
  store.SetLong(kStartDate, startDate_);
  store.SetLong(kPauseDate, pauseDate_);
  store.SetInt(kLaunches, launches_);
  store.SetString(kLastVersion, lastVersion_);
  store.SetBoolean(kSuccessfulClose, hasClosedWell_);
}

bool LifecycleRecord::IsFirstUse() const {
  return installDate_ == 0 && lastDateUsed_ == 0 && launches_ == 0;
}

bool LifecycleRecord::IsWithinSession(std::int64_t now, std::chrono::seconds timeout,
                                      const std::string& version) const {
  const std::int64_t away = now - pauseDate_;
  return hasClosedWell_ && pauseDate_ > 0 && away >= 0 && away < timeout.count() &&
         version == lastVersion_;
}

VariantMap LifecycleRecord::Launch(std::int64_t now, const std::string& version) {
  const std::shared_ptr<Variant> yes = Variant::FromString("true");
  VariantMap told{{"launch", yes}};
  if (IsFirstUse()) {
    told.emplace("install", yes);
  } else {
    if (!hasClosedWell_) told.emplace("crash", yes);
    if (lastDateUsed_ > 0) told.emplace("daysSinceLastUse", Days(lastDateUsed_, now));
    if (hasClosedWell_ && startDate_ > 0 && pauseDate_ >= startDate_) {
      told.emplace("previousSessionLength", Number(pauseDate_ - startDate_));
    }
    if (!lastVersion_.empty() && !version.empty() && lastVersion_ != version) {
      told.emplace("upgrade", yes);
      told.emplace("previousAppVersion", Variant::FromString(lastVersion_));
    }
  }
  if (installDate_ == 0) installDate_ = lastDateUsed_ > 0 ? lastDateUsed_ : now;
  launches_ += launches_ < std::numeric_limits<std::int32_t>::max() ? 1 : 0;
  if (!version.empty()) lastVersion_ = version;
  startDate_ = now;
  Resume(now);
  return told;
}

void LifecycleRecord::Resume(std::int64_t now) {
  lastDateUsed_ = now;
  pauseDate_ = 0;
  hasClosedWell_ = false;
}

void LifecycleRecord::Pause(std::int64_t now) {
  lastDateUsed_ = now;
  pauseDate_ = now;
  hasClosedWell_ = true;
}

VariantMap LifecycleRecord::Facts(std::int64_t now) const {
  return {{"installDate", Number(installDate_)},
          {"daysSinceInstall", Days(installDate_, now)},
          {"launches", Number(launches_)}};
}

}  // namespace Velmora
