#include "modules/AnalyticsModule.h"

#include <chrono>
#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/PrivacyStatus.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Analytics";

constexpr const char* kCollectorKey = "analytics.collector";
constexpr const char* kTimeoutKey = "analytics.timeout";
constexpr const char* kMaxHitsKey = "analytics.maxHits";
constexpr const char* kMaxAgeKey = "analytics.maxAge";
constexpr std::int64_t kDefaultTimeout = 15;
constexpr StateReader::Range kTimeoutRange{1, 300};
constexpr StateReader::Range kMaxHitsRange{1, 100'000};
constexpr StateReader::Range kMaxAgeRange{60, std::int64_t{365} * 24 * 3600};

constexpr std::size_t kMaxHitBytes = std::size_t{64} * 1024;
constexpr std::size_t kMaxPending = 100;

std::int64_t Milliseconds(Event::Clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

std::shared_ptr<Variant> ToVariant(std::size_t count) {
  return Variant::FromLong(static_cast<long long>(count));
}

bool IsHttps(const PlatformServicesInterface& services, const std::string& url) {
  const std::shared_ptr<URLServiceInterface> urls = services.GetURLService();
  return urls != nullptr && urls->GetScheme(url) == "https" && !urls->GetHost(url).empty();
}

}  // namespace

AnalyticsModule::AnalyticsModule()
    : configuration_(EventTypes::kConfiguration, kLogTag),
      identity_(EventTypes::kIdentity, kLogTag) {}

std::string AnalyticsModule::GetName() const { return EventTypes::kAnalytics; }

void AnalyticsModule::Attach(HubContext& hub) {
  hub_ = &hub;
  queue_.emplace(hub.Services(), hub.GetClock());
  sender_.emplace(hub, *queue_, [this] { TellDropped(); });
  hub.Listen(EventTypes::kAnalytics, EventSources::kRequest,
             [this](const EventPointer& event) { OnRequest(event); });
  hub.Listen(EventTypes::kAnalytics, EventSources::kQuery,
             [this](const EventPointer& event) { OnQuery(event); });
  ListenForConfiguration(hub, [this](const EventPointer&) { FollowConfiguration(); });
}

void AnalyticsModule::End() {
  sender_->SetCollector(std::nullopt);
  Flush();
  queue_->Save();
  TellDropped();
}

void AnalyticsModule::OnRequest(const EventPointer& event) {
  FollowConfiguration();
  if (event->GetData() == nullptr) {
    Log::Debug(kLogTag, "there was nothing to track");
  } else if (!status_.has_value()) {
    Log::Debug(kLogTag, "nothing is tracked: the privacy status is not known");
  } else if (*status_ == MobilePrivacyStatus::OptedOut) {
    Log::Debug(kLogTag, "nothing is tracked: the visitor has opted out");
  } else {
    Prepare(event);
  }
}

void AnalyticsModule::Prepare(const EventPointer& event) {
  const std::shared_ptr<EventData> data = event->GetData()->Copy();
  data->Put(EventKeys::kTimestamp, Variant::FromLong(Milliseconds(event->GetCreationTime())));
  data->PutString(EventKeys::kHitId, NewHitId(*event));
  identity_.Refresh(*hub_);
  if (const auto visitorId = identity_.Text(EventKeys::kVisitorId)) {
    data->PutString(EventKeys::kVisitorId, *visitorId);
  }
  std::optional<std::string> hit =
      JsonText::Write(hub_->Services(), data->GetAll(), kLogTag, "what was tracked cannot be sent");
  if (!hit.has_value()) return;
  if (hit->size() > kMaxHitBytes) {
    Log::Warning(kLogTag, "what was tracked is too long to be sent: %zu bytes", hit->size());
    return;
  }
  pending_.push_back({*std::move(hit), std::make_shared<Event>("prepared", EventTypes::kAnalytics,
                                                               EventSources::kPrepared, data)});
  if (pending_.size() == 1) {
    // Behind the events that wait already, which are written together with this one.
    hub_->WayHome()([this] { Flush(); });
  } else if (pending_.size() >= kMaxPending) {
    Flush();
  }
}

void AnalyticsModule::Flush() {
  if (pending_.empty()) return;
  const std::vector<Pending> pending = std::exchange(pending_, {});
  std::vector<std::string> hits;
  hits.reserve(pending.size());
  for (const Pending& each : pending) hits.push_back(each.hit);
  queue_->Append(hits);
  CountDropped();
  for (const Pending& each : pending) hub_->Dispatch(each.prepared);
  sender_->Wake();
}

void AnalyticsModule::OnQuery(const EventPointer& event) {
  FollowConfiguration();
  Flush();
  CountDropped();
  const EventData data({{EventKeys::kQueued, ToVariant(queue_->Count())},
                        {EventKeys::kSent, ToVariant(sender_->Total().sent)},
                        {EventKeys::kDropped, ToVariant(droppedInAll_)}});
  const Event response("numbers of hits", EventTypes::kAnalytics, EventSources::kResponse,
                       std::make_shared<EventData>(data));
  hub_->Dispatch(response.AsResponseTo(*event));
}

void AnalyticsModule::FollowConfiguration() {
  if (!configuration_.Refresh(*hub_)) return;
  FollowStatus(PrivacyStatusIn(configuration_));
  const HitQueue::Limits defaults;
  queue_->SetLimits({static_cast<std::size_t>(configuration_.Number(
                         kMaxHitsKey, static_cast<std::int64_t>(defaults.count), kMaxHitsRange)),
                     std::chrono::seconds(
                         configuration_.Number(kMaxAgeKey, defaults.age.count(), kMaxAgeRange))});
  CountDropped();
  sender_->SetCollector(FindCollector());
}

void AnalyticsModule::FollowStatus(std::optional<MobilePrivacyStatus> status) {
  if (status == status_) return;
  if (status != MobilePrivacyStatus::OptedIn) sender_->SetCollector(std::nullopt);
  // What was tracked under the status before.
  Flush();
  status_ = status;
  if (status == MobilePrivacyStatus::OptedOut) queue_->Clear();
}

// Where hits may go now.
std::optional<HitSender::Collector> AnalyticsModule::FindCollector() {
  const std::string url = configuration_.Text(kCollectorKey).value_or("");
  const auto timeout = configuration_.Number(kTimeoutKey, kDefaultTimeout, kTimeoutRange);
  if (url.empty() || status_ != MobilePrivacyStatus::OptedIn) return std::nullopt;
  if (!IsHttps(hub_->Services(), url)) {
    if (std::exchange(unusableUrl_, url) != url) {
      Log::Warning(kLogTag, "hits wait: \"%s\" of the configuration is no https URL",
                   kCollectorKey);
    }
    return std::nullopt;
  }
  if (hub_->Services().GetNetworkService() == nullptr) {
    if (!std::exchange(hasMissedNetwork_, true)) {
      Log::Warning(kLogTag, "hits wait: there is no network service");
    }
    return std::nullopt;
  }
  return HitSender::Collector{url, std::chrono::seconds(timeout)};
}

std::string AnalyticsModule::NewHitId(const Event& event) const {
  const std::shared_ptr<CryptoServiceInterface> crypto = hub_->Services().GetCryptoService();
  return crypto == nullptr ? event.GetId() : crypto->GetRandomUuid()->GetString();
}

void AnalyticsModule::CountDropped() {
  const HitQueue::Dropped dropped = queue_->TakeDropped();
  const std::size_t refused =
      sender_->Total().refused - std::exchange(refusedBefore_, sender_->Total().refused);
  const std::size_t count = dropped.tooMany + dropped.tooOld + refused;
  if (count == 0) return;
  untold_.tooMany += dropped.tooMany;
  untold_.tooOld += dropped.tooOld;
  untold_.refused += refused;
  droppedInAll_ += count;
  if (const auto state =
          JsonText::Write(hub_->Services(), {{EventKeys::kDropped, ToVariant(droppedInAll_)}},
                          kLogTag, "the number of dropped hits cannot be shared")) {
    hub_->SetSharedState(*state, nullptr);
  }
}

void AnalyticsModule::TellDropped() {
  CountDropped();
  const Dropped untold = std::exchange(untold_, {});
  if (untold.tooMany + untold.tooOld + untold.refused == 0) return;
  Log::Warning(kLogTag,
               "hits were dropped: %zu because too many waited, %zu because they were too old, %zu "
               "because the collector refused them",
               untold.tooMany, untold.tooOld, untold.refused);
}

}  // namespace Velmora
