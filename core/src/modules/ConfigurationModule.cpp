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

bool IsNothing(const std::shared_ptr<Variant>& value) {
  return value == nullptr || value->GetKind() == VariantKind::Null;
}

}  // namespace

std::string ConfigurationModule::GetName() const { return EventTypes::kConfiguration; }

void ConfigurationModule::Attach(HubContext& hub) {
  hub_ = &hub;
  hub.Listen(EventTypes::kConfiguration, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
  hub.Listen(EventTypes::kConfiguration, EventSources::kQuery,
             [this](const EventPointer& event) { OnQuery(event); });
}

void ConfigurationModule::BeforeFirstEvent(const EventPointer& event) {
  if (const std::shared_ptr<DataStoreInterface> store = Store()) {
    const std::int32_t number = store->GetInt(kStatusKey, kNoStatus);
    if (number != kNoStatus) chosenStatus_ = PrivacyStatusOf(number);
  } else {
    Log::Warning(kLogTag, "there is no data store; the privacy status will not be remembered");
  }
  Publish(configuration_, event);
}

void ConfigurationModule::OnRequest(const EventPointer& event) {
  const ValueReader data(*event);
  if (const std::optional<std::string> appId = data.Text(EventKeys::kAppId)) {
    UseAppId(*appId, event);
  } else if (const std::optional<std::string> path = data.Text(EventKeys::kFilePath)) {
    if (const auto members = ConfigurationFile::Read(hub_->Services(), *path)) {
      Merge(*members, event);
    }
  } else if (const std::optional<VariantMap> update = data.Map(EventKeys::kUpdate)) {
    Merge(*update, event);
  } else if (const std::shared_ptr<Variant> status = data.Value(EventKeys::kPrivacyStatus);
             status != nullptr && status->IsNumericKind()) {
    SetStatus(PrivacyStatusOf(status), event);
  } else {
    Log::Debug(kLogTag, "the request \"%s\" asks for nothing that is known",
               event->GetName().c_str());
  }
}

void ConfigurationModule::UseAppId(const std::string& appId, const EventPointer& event) {
  if (appId.empty()) {
    Log::Warning(kLogTag, "an empty app id was ignored");
    return;
  }
  Log::Debug(kLogTag, "the app id is kept; a configuration for it cannot be fetched yet");
  Merge({{EventKeys::kAppId, Variant::FromString(appId)}}, event);
}

void ConfigurationModule::Merge(const VariantMap& members, const EventPointer& event) {
  VariantMap merged = configuration_;
  for (const auto& [key, value] : members) {
    if (IsNothing(value)) {
      merged.erase(key);
    } else {
      merged.insert_or_assign(key, value);
    }
  }
  if (Publish(merged, event)) configuration_ = std::move(merged);
}

void ConfigurationModule::SetStatus(MobilePrivacyStatus status, const EventPointer& event) {
  chosenStatus_ = status;
  if (const std::shared_ptr<DataStoreInterface> store = Store()) {
    store->SetInt(kStatusKey, static_cast<std::int32_t>(status));
  }
  Publish(configuration_, event);
}

void ConfigurationModule::OnQuery(const EventPointer& event) {
  EventData data;
  data.Put(EventKeys::kPrivacyStatus, ToVariant(Status(configuration_)));
  const Event response("privacy status", EventTypes::kConfiguration, EventSources::kResponse,
                       std::make_shared<EventData>(std::move(data)));
  hub_->Dispatch(response.AsResponseTo(*event));
}

bool ConfigurationModule::Publish(const VariantMap& configuration, const EventPointer& event) {
  VariantMap state = configuration;
  state.insert_or_assign(EventKeys::kPrivacyStatus, ToVariant(Status(configuration)));
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
