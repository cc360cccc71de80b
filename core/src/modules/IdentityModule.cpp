#include "modules/IdentityModule.h"

#include <algorithm>
#include <array>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/PrivacyStatus.h"
#include "modules/ValueReader.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Identity";
constexpr const char* kStoreName = "visitorIDServiceDataStore";
constexpr const char* kPushEnabledKey = "KORVOMOBILE_PUSH_ENABLED";

struct StoredIdentity {
  const char* key;
  const char* name;
};
constexpr std::array<StoredIdentity, 5> kStoredIdentities{{
    {"KORVOMOBILE_PERSISTED_MID", EventKeys::kVisitorId},
    {"KORVOMOBILE_VISITOR_ID", "customVisitorId"},
    {"KORVOMOBILE_VISITORID_IDS", "linkedIds"},
    {"KORVOMOBILE_PUSH_IDENTIFIER", EventKeys::kPushIdentifier},
    {"KORVOMOBILE_ADVERTISING_IDENTIFIER", EventKeys::kAdvertisingIdentifier},
}};

// What an earlier generation stored beside the visitor id.
constexpr std::array<const char*, 2> kCompanions{"KORVOMOBILE_PERSISTED_MID_HINT",
                                                 "KORVOMOBILE_PERSISTED_MID_BLOB"};

constexpr std::size_t kMaxBytes = 4096;

// A device whose user allows no tracking gives zeros for its advertising identifier.
bool IsBlank(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char letter) { return letter == '0' || letter == '-'; });
}

bool IsGivenByApp(const std::string& name) {
  return name == EventKeys::kPushIdentifier || name == EventKeys::kAdvertisingIdentifier;
}

}  // namespace

IdentityModule::IdentityModule() : configuration_(EventTypes::kConfiguration, kLogTag) {}

std::string IdentityModule::GetName() const { return EventTypes::kIdentity; }

void IdentityModule::Attach(HubContext& hub) {
  hub_ = &hub;
  hub.Listen(EventTypes::kIdentity, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
  hub.Listen(EventTypes::kIdentity, EventSources::kQuery,
             [this](const EventPointer& event) { OnQuery(event); });
  ListenForConfiguration(hub, [this](const EventPointer& event) { FollowStatus(event); });
}

void IdentityModule::BeforeFirstEvent(const EventPointer& event) {
  Load();
  FollowStatus(event);
}

void IdentityModule::Load() {
  const std::shared_ptr<DataStoreInterface> store = OpenStore();
  if (store == nullptr) {
    Log::Warning(kLogTag, "there is no data store; identifiers will not be remembered");
    return;
  }
  for (const StoredIdentity& stored : kStoredIdentities) {
    std::string text = store->GetString(stored.key, "");
    if (!text.empty()) identifiers_.insert_or_assign(stored.name, std::move(text));
  }
}

void IdentityModule::OnRequest(const EventPointer& event) {
  const ValueReader data(*event);
  if (const std::optional<std::string> push = data.Text(EventKeys::kPushIdentifier)) {
    Take(EventKeys::kPushIdentifier, *push, event);
  } else if (const auto advertising = data.Text(EventKeys::kAdvertisingIdentifier)) {
    Take(EventKeys::kAdvertisingIdentifier, IsBlank(*advertising) ? "" : *advertising, event);
  } else {
    Log::Debug(kLogTag, "the request \"%s\" asks for nothing that is known",
               event->GetName().c_str());
  }
}

void IdentityModule::Take(const char* name, const std::string& text, const EventPointer& event) {
  if (text.size() > kMaxBytes) {
    Log::Warning(kLogTag, "an identifier of %zu bytes is too long and was ignored", text.size());
    return;
  }
  if (text.empty()) {
    identifiers_.erase(name);
  } else {
    identifiers_.insert_or_assign(name, text);
  }
  if (!IsOptedOut()) Store(name);
  Publish(event);
}

void IdentityModule::FollowStatus(const EventPointer& event) {
  if (!configuration_.Refresh(*hub_)) return;
  const bool wasKnown = status_.has_value();
  const bool wasOptedOut = IsOptedOut();
  status_ = PrivacyStatusIn(configuration_);
  if (!status_.has_value() || (wasKnown && wasOptedOut == IsOptedOut())) return;
  if (IsOptedOut()) {
    Erase();
  } else {
    MakeVisitorId();
    for (const auto& [name, text] : identifiers_) Store(name);
  }
  Publish(event);
}

void IdentityModule::Erase() {
  std::erase_if(identifiers_,
                [](const auto& identifier) { return !IsGivenByApp(identifier.first); });
  const std::shared_ptr<DataStoreInterface> store = OpenStore();
  if (store == nullptr) return;
  for (const StoredIdentity& stored : kStoredIdentities) store->Remove(stored.key);
  for (const char* key : kCompanions) store->Remove(key);
  store->Remove(kPushEnabledKey);
}

void IdentityModule::MakeVisitorId() {
  if (identifiers_.contains(EventKeys::kVisitorId)) return;
  const std::shared_ptr<CryptoServiceInterface> crypto = hub_->Services().GetCryptoService();
  if (crypto == nullptr) {
    Log::Warning(kLogTag, "there is no crypto service to make a visitor id with");
    return;
  }
  identifiers_.emplace(EventKeys::kVisitorId, crypto->GetRandomUuid()->GetString());
}

void IdentityModule::Store(const std::string& name) const {
  const std::shared_ptr<DataStoreInterface> store = OpenStore();
  if (store == nullptr) return;
  const auto* const stored =
      std::find_if(kStoredIdentities.begin(), kStoredIdentities.end(),
                   [&](const StoredIdentity& each) { return each.name == name; });
  const auto identifier = identifiers_.find(name);
  if (identifier == identifiers_.end()) {
    store->Remove(stored->key);
  } else if (store->GetString(stored->key, "") != identifier->second) {
    store->SetString(stored->key, identifier->second);
  }
  if (name == EventKeys::kPushIdentifier) {
    store->SetBoolean(kPushEnabledKey, identifier != identifiers_.end());
  }
}

void IdentityModule::Publish(const EventPointer& event) {
  if (const auto text =
          JsonText::Write(hub_->Services(), Told(), kLogTag, "the identifiers cannot be shared")) {
    hub_->SetSharedState(*text, event);
  }
}

void IdentityModule::OnQuery(const EventPointer& event) {
  EventData data;
  data.PutString(EventKeys::kIdentities, JsonText::Write(hub_->Services(), Told(), kLogTag,
                                                         "the identifiers cannot be told")
                                             .value_or("{}"));
  const Event response("identities", EventTypes::kIdentity, EventSources::kResponse,
                       std::make_shared<EventData>(std::move(data)));
  hub_->Dispatch(response.AsResponseTo(*event));
}

VariantMap IdentityModule::Told() const {
  VariantMap told;
  if (IsOptedOut()) return told;
  for (const auto& [name, text] : identifiers_) told.emplace(name, Variant::FromString(text));
  return told;
}

std::shared_ptr<DataStoreInterface> IdentityModule::OpenStore() const {
  const std::shared_ptr<LocalStorageServiceInterface> storage =
      hub_->Services().GetLocalStorageService();
  return storage == nullptr ? nullptr : storage->GetDataStore(kStoreName);
}

}  // namespace Velmora
