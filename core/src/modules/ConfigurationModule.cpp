#include "modules/ConfigurationModule.h"

#include <cstdint>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/ConfigurationFile.h"
#include "modules/JsonText.h"
#include "modules/PrivacyStatus.h"
#include "modules/ValueReader.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Configuration";
constexpr const char* kStoreName = "KorvoMobile_ConfigState";
constexpr const char* kStatusKey = "PrivacyStatus";
constexpr std::int32_t kNoStatus = -1;

}  // namespace

std::string ConfigurationModule::GetName() const { return EventTypes::kConfiguration; }

void ConfigurationModule::Attach(HubContext& hub) {
  hub_ = &hub;
  download_.emplace(hub);
  hub.Listen(EventTypes::kConfiguration, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
  hub.Listen(EventTypes::kConfiguration, EventSources::kQuery,
             [this](const EventPointer& event) { OnQuery(event); });
}

void ConfigurationModule::BeforeFirstEvent(const EventPointer& event) {
  if (const std::shared_ptr<DataStoreInterface> store = Store()) {
    const std::int32_t number = store->GetInt(kStatusKey, kNoStatus);
    if (number != kNoStatus) chosenStatus_ = PrivacyStatusOf(number);
    layers_ = ConfigurationLayers::Load(hub_->Services(), *store);
  } else {
    Log::Warning(kLogTag, "there is no data store; the configuration will not be remembered");
  }
  if (Publish(layers_, event)) return;
  layers_ = {};
  Publish(layers_, event);
}

void ConfigurationModule::OnRequest(const EventPointer& event) {
  const ValueReader data(*event);
  if (const std::optional<std::string> appId = data.Text(EventKeys::kAppId)) {
    UseAppId(*appId, event);
  } else if (const std::optional<std::string> path = data.Text(EventKeys::kFilePath)) {
    if (const auto members = ConfigurationFile::Read(hub_->Services(), *path)) {
      Change(ConfigurationLayer::File, *members, event);
    }
  } else if (const std::optional<VariantMap> update = data.Map(EventKeys::kUpdate)) {
    Update(*update, event);
  } else if (const std::shared_ptr<Variant> status = data.Value(EventKeys::kPrivacyStatus);
             status != nullptr && status->IsNumericKind()) {
    SetStatus(PrivacyStatusOf(status), event);
  } else {
    Log::Debug(kLogTag, "the request \"%s\" asks for nothing that is known",
               event->GetName().c_str());
  }
}

void ConfigurationModule::UseAppId(const std::string& appId, const EventPointer& event) {
  if (!ConfigurationDownload::IsAppId(appId)) {
    Log::Warning(kLogTag, "%s app id was ignored", appId.empty() ? "an empty" : "an unusable");
    return;
  }
  const bool isBegun = download_->Begin(
      appId, [this, appId](const VariantMap& members) { OnDownload(appId, members); });
  const VariantMap& former = layers_.Get(ConfigurationLayer::Remote);
  const auto formerId = former.find(EventKeys::kAppId);
  const std::shared_ptr<Variant> id = Variant::FromString(appId);
  if (formerId != former.end() && Variant::AreEqual(formerId->second, id)) return;
  VariantMap members;
  if (isBegun) members = download_->Cached().value_or(VariantMap());
  members.insert_or_assign(EventKeys::kAppId, id);
  Change(ConfigurationLayer::Remote, std::move(members), event);
}

void ConfigurationModule::OnDownload(const std::string& appId, VariantMap members) {
  members.insert_or_assign(EventKeys::kAppId, Variant::FromString(appId));
  // Most downloads bring nothing new.
  if (Variant::AreEqual(Variant::FromVariantMap(members),
                        Variant::FromVariantMap(layers_.Get(ConfigurationLayer::Remote)))) {
    return;
  }
  Change(ConfigurationLayer::Remote, std::move(members), nullptr);
}

void ConfigurationModule::Update(const VariantMap& members, const EventPointer& event) {
  VariantMap updates = layers_.Get(ConfigurationLayer::Updates);
  for (const auto& [key, value] : members) {
    if (key.empty()) {
      Log::Debug(kLogTag, "a member without a name is ignored");
      continue;
    }
    updates.insert_or_assign(key, IsNothing(value) ? Variant::FromNull() : value);
  }
  Change(ConfigurationLayer::Updates, std::move(updates), event);
}

void ConfigurationModule::Change(ConfigurationLayer layer, VariantMap members,
                                 const EventPointer& event) {
  ConfigurationLayers changed = layers_;
  changed.Set(layer, std::move(members));
  if (!Publish(changed, event)) return;
  layers_ = std::move(changed);
  const std::shared_ptr<DataStoreInterface> store = Store();
  // Without a service to write with, publishing has said so.
  if (store == nullptr || hub_->Services().GetJsonUtilityService() == nullptr) return;
  layers_.Save(layer, hub_->Services(), *store);
}

void ConfigurationModule::SetStatus(MobilePrivacyStatus status, const EventPointer& event) {
  chosenStatus_ = status;
  if (const std::shared_ptr<DataStoreInterface> store = Store()) {
    store->SetInt(kStatusKey, static_cast<std::int32_t>(status));
  }
  Publish(layers_, event);
}

void ConfigurationModule::OnQuery(const EventPointer& event) {
  EventData data;
  data.Put(EventKeys::kPrivacyStatus, ToVariant(Status(layers_.Merged())));
  const Event response("privacy status", EventTypes::kConfiguration, EventSources::kResponse,
                       std::make_shared<EventData>(std::move(data)));
  hub_->Dispatch(response.AsResponseTo(*event));
}

bool ConfigurationModule::Publish(const ConfigurationLayers& layers, const EventPointer& event) {
  VariantMap state = layers.Merged();
  state.insert_or_assign(EventKeys::kPrivacyStatus, ToVariant(Status(state)));
  const std::optional<std::string> text =
      JsonText::Write(hub_->Services(), state, kLogTag, "the configuration cannot be shared");
  if (!text.has_value()) return hub_->Services().GetJsonUtilityService() == nullptr;
  if (hub_->SetSharedState(*text, event)) return true;
  Log::Error(kLogTag, "the configuration cannot be shared: it is too long");
  return false;
}

MobilePrivacyStatus ConfigurationModule::Status(const VariantMap& configuration) const {
  if (chosenStatus_.has_value()) return *chosenStatus_;
  const auto member = configuration.find(EventKeys::kPrivacyStatus);
  return member == configuration.end() ? MobilePrivacyStatus::Unknown
                                       : PrivacyStatusOf(member->second);
}

std::shared_ptr<DataStoreInterface> ConfigurationModule::Store() const {
  const std::shared_ptr<LocalStorageServiceInterface> storage =
      hub_->Services().GetLocalStorageService();
  return storage == nullptr ? nullptr : storage->GetDataStore(kStoreName);
}

}  // namespace Velmora
