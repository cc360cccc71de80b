#include "modules/AnalyticsModule.h"

#include <chrono>
#include <optional>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/PrivacyStatus.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Analytics";

std::int64_t Milliseconds(Event::Clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

}  // namespace

std::string AnalyticsModule::GetName() const { return EventTypes::kAnalytics; }

void AnalyticsModule::Attach(HubContext& hub) {
  hub_ = &hub;
  hub.Listen(EventTypes::kAnalytics, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
}

void AnalyticsModule::OnRequest(const EventPointer& event) {
  if (event->GetData() == nullptr) {
    Log::Debug(kLogTag, "there was nothing to track");
    return;
  }
  const std::optional<MobilePrivacyStatus> status = StatusAt(event);
  if (!status.has_value() || *status == MobilePrivacyStatus::OptedOut) {
    Log::Debug(
        kLogTag, "nothing is tracked: %s",
        status.has_value() ? "the visitor has opted out" : "the privacy status is not known");
    return;
  }
  const std::shared_ptr<EventData> data = event->GetData()->Copy();
  data->Put(EventKeys::kTimestamp, Variant::FromLong(Milliseconds(event->GetCreationTime())));
  hub_->Dispatch(
      std::make_shared<Event>("prepared", EventTypes::kAnalytics, EventSources::kPrepared, data));
}

std::optional<MobilePrivacyStatus> AnalyticsModule::StatusAt(const EventPointer& event) {
  const std::shared_ptr<const std::string> configuration =
      hub_->GetSharedState(EventTypes::kConfiguration, event);
  if (configuration == nullptr) return std::nullopt;
  if (configuration != knownConfiguration_) {
    const std::optional<VariantMap> members = JsonText::Read(hub_->Services(), *configuration);
    knownStatus_ = std::nullopt;
    if (members.has_value() && members->contains(EventKeys::kPrivacyStatus)) {
      knownStatus_ = PrivacyStatusOf(members->at(EventKeys::kPrivacyStatus));
    }
    knownConfiguration_ = configuration;
  }
  return knownStatus_;
}

}  // namespace Velmora
