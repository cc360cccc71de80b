#include "modules/RulesStore.h"

#include <algorithm>
#include <charconv>

#include "VelmoraCore/Log.h"

namespace Velmora {
namespace {

constexpr const char* kStoreName = "KorvoMobile_Rules";
constexpr const char* kCurrent = "Current";
constexpr const char* kFolder = "folder";
constexpr const char* kSha256 = "sha256";
constexpr const char* kTimesFired = "TimesFired";

std::string Member(const StringMap& map, const char* key) {
  const auto member = map.find(key);
  return member == map.end() ? std::string() : member->second;
}

}  // namespace

RulesStore::RulesStore(const PlatformServicesInterface& services) {
  if (const auto storage = services.GetLocalStorageService()) {
    store_ = storage->GetDataStore(kStoreName);
  }
  if (store_ != nullptr) counts_ = store_->GetMap(kTimesFired);
}

std::optional<RulesStore::Current> RulesStore::GetCurrent() const {
  if (store_ == nullptr) return std::nullopt;
  const StringMap stored = store_->GetMap(kCurrent);
  if (stored.empty()) return std::nullopt;
  return Current{Member(stored, kFolder), Member(stored, kSha256)};
}

bool RulesStore::SetCurrent(const Current& current) {
  if (store_ != nullptr) {
    store_->SetMap(kCurrent, {{kFolder, current.folder}, {kSha256, current.sha256}});
    const std::optional<Current> stored = GetCurrent();
    if (stored && stored->folder == current.folder) return true;
  }
  Log::Warning("Rules", "the rules will not be remembered: there is no data store that works");
  return false;
}

std::int64_t RulesStore::TimesFired(const std::string& rule) const {
  const auto count = counts_.find(rule);
  if (count == counts_.end()) return 0;
  const std::string& text = count->second;
  std::int64_t times = 0;
  std::from_chars(text.data(), text.data() + text.size(), times);
  return std::max<std::int64_t>(times, 0);
}

void RulesStore::CountFiring(const std::string& rule) {
  counts_.insert_or_assign(rule, std::to_string(TimesFired(rule) + 1));
  SaveCounts();
}

void RulesStore::KeepCountsOf(const RuleSet& rules) {
  const auto gone = std::erase_if(counts_, [&](const auto& count) {
    return std::none_of(rules.begin(), rules.end(),
                        [&](const Rule& rule) { return rule.id == count.first; });
  });
  if (gone > 0) SaveCounts();
}

void RulesStore::SaveCounts() const {
  if (store_ != nullptr) store_->SetMap(kTimesFired, counts_);
}

}  // namespace Velmora
