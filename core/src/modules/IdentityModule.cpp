#include "modules/IdentityModule.h"

#include <array>
#include <optional>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/ValueReader.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Identity";
constexpr const char* kStoreName = "visitorIDServiceDataStore";

struct StoredIdentity {
  const char* key;
  const char* name;
};
constexpr std::array<StoredIdentity, 3> kStoredIdentities{{
    {"KORVOMOBILE_PERSISTED_MID", "visitorId"},
    {"KORVOMOBILE_VISITOR_ID", "customVisitorId"},
    {"KORVOMOBILE_VISITORID_IDS", "linkedIds"},
}};

void AddText(VariantMap& identities, const char* name, const std::string& text) {
  if (!text.empty()) identities.insert_or_assign(name, Variant::FromString(text));
}

}  // namespace

std::string IdentityModule::GetName() const { return EventTypes::kIdentity; }

void IdentityModule::Attach(HubContext& hub) {
  hub_ = &hub;
  hub.Listen(EventTypes::kIdentity, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
  hub.Listen(EventTypes::kIdentity, EventSources::kQuery,
             [this](const EventPointer& event) { OnQuery(event); });
}

void IdentityModule::OnRequest(const EventPointer& event) {
  const ValueReader data(*event);
  if (std::optional<std::string> push = data.Text(EventKeys::kPushIdentifier)) {
    pushIdentifier_ = std::move(*push);
  } else if (std::optional<std::string> advertising =
                 data.Text(EventKeys::kAdvertisingIdentifier)) {
    advertisingIdentifier_ = std::move(*advertising);
  } else {
    Log::Debug(kLogTag, "the request \"%s\" asks for nothing that is known",
               event->GetName().c_str());
    return;
  }
  VariantMap given;
  AddGiven(given);
  if (const auto text =
          JsonText::Write(hub_->Services(), given, kLogTag, "the identifiers cannot be shared")) {
    hub_->SetSharedState(*text, event);
  }
}

void IdentityModule::OnQuery(const EventPointer& event) {
  VariantMap identities;
  AddStored(identities);
  AddGiven(identities);
  EventData data;
  data.PutString(EventKeys::kIdentities, JsonText::Write(hub_->Services(), identities, kLogTag,
                                                         "the identifiers cannot be told")
                                             .value_or("{}"));
  const Event response("identities", EventTypes::kIdentity, EventSources::kResponse,
                       std::make_shared<EventData>(std::move(data)));
  hub_->Dispatch(response.AsResponseTo(*event));
}

void IdentityModule::AddGiven(VariantMap& identities) const {
  AddText(identities, EventKeys::kPushIdentifier, pushIdentifier_);
  AddText(identities, EventKeys::kAdvertisingIdentifier, advertisingIdentifier_);
}

void IdentityModule::AddStored(VariantMap& identities) const {
  const std::shared_ptr<LocalStorageServiceInterface> storage =
      hub_->Services().GetLocalStorageService();
  if (storage == nullptr) {
    Log::Warning(kLogTag, "there is no data store; stored identifiers are not known");
    return;
  }
  const std::shared_ptr<DataStoreInterface> store = storage->GetDataStore(kStoreName);
  if (store == nullptr) return;
  for (const StoredIdentity& stored : kStoredIdentities) {
    AddText(identities, stored.name, store->GetString(stored.key, ""));
  }
}

}  // namespace Velmora
