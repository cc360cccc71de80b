#include "modules/RulesModule.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/StringUtils.h"
#include "modules/AsciiText.h"
#include "modules/JsonText.h"
#include "modules/RulesArchive.h"
#include "modules/ValueReader.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Rules";
constexpr const char* kUrlKey = "rules.url";
constexpr const char* kSha256Key = "rules.sha256";
constexpr const char* kCacheFolder = "rules";
constexpr std::chrono::seconds kRest{1};

using Installation = Expected<InstalledRules, std::string>;

std::string TextOf(const VariantMap& members, const char* key) {
  const auto member = members.find(key);
  const bool isText = member != members.end() && member->second != nullptr &&
                      member->second->GetKind() == VariantKind::String;
  return isText ? member->second->GetString() : std::string();
}

bool IsSha256(const std::string& text) {
  constexpr std::size_t kDigits = 64;
  return text.size() == kDigits && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

void TellThatTheyStay(const std::string& reason) {
  Log::Error(kLogTag, "the rules stay as they are: %s", reason.c_str());
}

// The rules' own events, and that of their shared state.
bool IsOfTheRulesOwn(const Event& event) {
  if (event.GetType() == EventTypes::kRules) return true;
  return event.GetType() == EventTypes::kHub && event.GetSource() == EventSources::kSharedState &&
         ValueReader(event).Text(EventKeys::kStateOwner) == EventTypes::kRules;
}

bool NeedsTheScreen(const Rule& rule) {
  return std::any_of(rule.consequences.begin(), rule.consequences.end(), TakesTheScreen);
}

// The first service that rules cannot do without and that is not there; null when all are.
const char* MissingService(const PlatformServicesInterface& services) {
  return services.GetFileSystemService() == nullptr          ? "file system"
         : services.GetSystemInfoService() == nullptr        ? "system information"
         : services.GetJsonUtilityService() == nullptr       ? "JSON"
         : services.GetCryptoService() == nullptr            ? "crypto"
         : services.GetCompressedFileService() == nullptr    ? "compressed file"
         : services.GetRemoteFileManagerService() == nullptr ? "remote file"
                                                             : nullptr;
}

// What comes of a download, on the thread that brought it.
std::optional<InstalledRules> Receive(const PlatformServicesInterface& services,
                                      const RemoteFileManagerServiceInterface::FileResult& result,
                                      const std::string& sha256, bool isServing) {
  if (!result) {
    TellThatTheyStay(std::string("their archive cannot be had: ") + result.GetError().what());
    return std::nullopt;
  }
  const auto archive = RulesArchive::ReadChecked(services, result.GetValue()->ToUri(), sha256);
  if (!archive) {
    // Or it would be served again from the cache.
    services.GetRemoteFileManagerService()->DeleteCachedDataNotInList(kCacheFolder, {});
    TellThatTheyStay("their archive is not used: " + archive.GetError());
    return std::nullopt;
  }
  if (isServing) {
    Log::Debug(kLogTag, "the rules that the configuration names serve already");
    return std::nullopt;
  }
  Installation installation = RulesArchive::Install(services, archive.GetValue(), sha256);
  if (installation) return std::move(installation).GetValue();
  TellThatTheyStay("their archive cannot be used: " + installation.GetError());
  return std::nullopt;
}

}  // namespace

// What the configuration says about the archive.
struct RulesModule::Source {
  std::string url;
  std::string sha256;
};

std::string RulesModule::GetName() const { return EventTypes::kRules; }

void RulesModule::Attach(HubContext& hub) {
  hub_ = &hub;
  presenter_.emplace(hub);
  hub.Listen(EventTypes::kRules, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
  hub.ListenToAll([this](const EventPointer& event) { OnEvent(event); });
}

void RulesModule::BeforeFirstEvent(const EventPointer& event) {
  store_.emplace(hub_->Services());
  const std::optional<RulesStore::Current> current = store_->GetCurrent();
  if (!current || MissingService(hub_->Services()) != nullptr) return;
  Installation installation = RulesFolder::Load(hub_->Services(), current->folder, current->sha256);
  if (installation) {
    Serve(std::move(installation).GetValue(), event);
  } else {
    Log::Error(kLogTag, "the rules of the last start cannot be used: %s",
               installation.GetError().c_str());
  }
}

void RulesModule::OnRequest(const EventPointer& event) {
  if (const char* const missing = MissingService(hub_->Services())) {
    Log::Error(kLogTag, "no rules can be had: there is no %s service", missing);
    return;
  }
  const std::optional<Source> source = ConfiguredAt(event);
  if (!source) {
    Log::Warning(kLogTag,
                 "the configuration names no rules: \"%s\" must be a URL and \"%s\" 64 hexadecimal "
                 "digits",
                 kUrlKey, kSha256Key);
    return;
  }
  if (!std::exchange(isTidied_, true)) {
    RulesFolder::DeleteAllBut(hub_->Services(), installed_ ? installed_->folder : "");
  }
  Fetch(*source);
}

std::optional<RulesModule::Source> RulesModule::ConfiguredAt(const EventPointer& event) const {
  const auto configuration = hub_->GetSharedState(EventTypes::kConfiguration, event);
  if (configuration == nullptr) return std::nullopt;
  const VariantMap members =
      JsonText::Read(hub_->Services(), *configuration).value_or(VariantMap());
  std::optional<Source> source(std::in_place);
  source->url = TextOf(members, kUrlKey);
  source->sha256 = AsciiText::LowerCase(TextOf(members, kSha256Key));
  if (!StringUtils::StringIsUrl(source->url) || !IsSha256(source->sha256)) source.reset();
  return source;
}

void RulesModule::Fetch(const Source& source) {
  const auto remote = hub_->Services().GetRemoteFileManagerService();
  const bool isServing = installed_ && installed_->sha256 == source.sha256;
  // The download may end after the hub and the services have gone.
  remote->GetFileAsync(
      source.url, kCacheFolder,
      [this, source, isServing, wayHome = hub_->WayHome(),
       weakServices = std::weak_ptr(ObjectToSharedPtr(hub_->Services()))](
          const RemoteFileManagerServiceInterface::FileResult& result) {
        const std::shared_ptr<PlatformServicesInterface> services = weakServices.lock();
        if (services == nullptr) return;
        const std::optional<InstalledRules> installed =
            Receive(*services, result, source.sha256, isServing);
        if (!installed) return;
        wayHome([this, url = source.url, installed = *installed] { Adopt(installed, url); });
      });
}

void RulesModule::Adopt(const InstalledRules& installed, const std::string& url) {
  const std::string former = installed_ ? installed_->folder : "";
  const bool isRemembered = store_->SetCurrent({installed.folder, installed.sha256});
  store_->KeepCountsOf(installed.rules);
  Serve(installed, nullptr);
  if (isRemembered) RulesFolder::Delete(hub_->Services(), former);
  hub_->Services().GetRemoteFileManagerService()->DeleteCachedDataNotInList(kCacheFolder, {url});
}

void RulesModule::Serve(InstalledRules installed, const EventPointer& event) {
  installed_ = std::move(installed);
  lastFired_.clear();
  const auto count = static_cast<std::int64_t>(installed_->rules.size());
  const VariantMap state{{"count", Variant::FromLong(count)},
                         {"sha256", Variant::FromString(installed_->sha256)}};
  if (const auto text = JsonText::Write(hub_->Services(), state, kLogTag,
                                        "the state of the rules cannot be shared")) {
    hub_->SetSharedState(*text, event);
  }
}

void RulesModule::OnEvent(const EventPointer& event) {
  if (!installed_ || installed_->rules.empty() || IsOfTheRulesOwn(*event)) return;
  bool isScreenFree = presenter_->IsScreenFree();
  for (const Rule& rule : installed_->rules) {
    if (!MayFire(rule) || !rule.condition.Holds(*event)) continue;
    if (NeedsTheScreen(rule) && !std::exchange(isScreenFree, false)) {
      Log::Debug(kLogTag, "the rule \"%s\" does not fire: the screen is taken", rule.id.c_str());
      continue;
    }
    Fire(rule);
  }
}

bool RulesModule::MayFire(const Rule& rule) const {
  if (rule.limit && store_->TimesFired(rule.id) >= *rule.limit) return false;
  const auto last = lastFired_.find(rule.id);
  if (last == lastFired_.end()) return true;
  // A time of day that has been set back counts as rest enough.
  const Clock::TimePoint now = hub_->GetClock().Now();
  return now < last->second || now - last->second >= kRest;
}

void RulesModule::Fire(const Rule& rule) {
  // Counted first: a process that is killed meanwhile must not show it once too often.
  if (rule.limit) store_->CountFiring(rule.id);
  lastFired_.insert_or_assign(rule.id, hub_->GetClock().Now());
  const std::string folder = RulesFolder::PathOf(hub_->Services(), installed_->folder);
  for (const RuleConsequence& consequence : rule.consequences) {
    RuleReport(*hub_, rule.id, NameOf(consequence)).Tell(RuleOutcomes::kFired);
    presenter_->Show(rule, consequence, folder);
  }
}

}  // namespace Velmora
