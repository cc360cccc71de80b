#include "modules/HitSender.h"

#include <algorithm>
#include <array>
#include <utility>

#include "VelmoraCore/HttpConnectionConstants.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "modules/RetryAfter.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Analytics";
constexpr std::chrono::milliseconds kFirstDelay = std::chrono::seconds(1);
constexpr std::chrono::milliseconds kLongestDelay = std::chrono::minutes(10);

// A request that comes to nothing says nothing; by so much later than it may last it has.
constexpr std::chrono::seconds kGrace{1};

bool IsTaken(std::int32_t status) {
  return status >= HttpConnectionConstants::HTTP_OK &&
         status < HttpConnectionConstants::HTTP_MULTIPLE_CHOICES;
}

// These speak of the hit itself: a second attempt would fare no better. All others may pass, wrong
// credentials and wrong addresses too, once somebody has put them right.
bool IsRefusedForGood(std::int32_t status) {
  constexpr std::array<std::int32_t, 4> kRefusals = {400, 413, 415, 422};
  return std::find(kRefusals.begin(), kRefusals.end(), status) != kRefusals.end();
}

}  // namespace

HitSender::HitSender(HubContext& hub, HitQueue& queue, std::function<void()> onProgress)
    : hub_(hub),
      queue_(queue),
      onProgress_(std::move(onProgress)),
      wayHome_(hub.WayHome()),
      timer_(hub),
      delay_(kFirstDelay, kLongestDelay) {}

void HitSender::SetCollector(std::optional<Collector> collector) {
  if (collector_ == collector) return;
  collector_ = std::move(collector);
  End();
  delay_.Reset();
  Wake();
}

void HitSender::Wake() {
  if (isBusy_ || !collector_.has_value()) return;
  if (const std::optional<HitQueue::Hit> hit = queue_.First()) {
    Post(*hit);
    return;
  }
  if (queue_.IsDisturbed()) {
    WakeAfter(HitQueue::kRetry);
  }
  onProgress_();
}

void HitSender::Post(const HitQueue::Hit& hit) {
  Begin(collector_->timeout + kGrace, [this] { OnFailure({}); });
  const auto onResponse = [wayHome = wayHome_, this, work = work_, place = hit.place](
                              const std::shared_ptr<HttpConnectionInterface>& connection) {
    const Answer answer{connection->GetResponseCode(),
                        connection->GetResponsePropertyValue("Retry-After")};
    // The sender lives as long as the way home leads there.
    wayHome([this, work, place, answer] {
      if (work == work_) OnAnswer(place, answer);
    });
  };
  TryCatch(
      [&] {
        const std::shared_ptr<NetworkServiceInterface> network =
            hub_.Services().GetNetworkService();
        if (network == nullptr) return;
        network->ConnectUrlAsync(collector_->url, HttpCommandType::Post, hit.text,
                                 {{"Content-Type", "application/json"}}, collector_->timeout,
                                 collector_->timeout, onResponse);
      },
      [](SdkError& error) { Log::Debug(kLogTag, "a hit cannot be sent: %s", error.what()); });
}

// From now on this is what the sender is busy with.
void HitSender::Begin(std::chrono::milliseconds wait, std::function<void()> then) {
  End();
  timer_.Start(wait, std::move(then));
  isBusy_ = true;
}

void HitSender::WakeAfter(std::chrono::milliseconds wait) {
  Begin(wait, [this] {
    End();
    Wake();
  });
}

void HitSender::End() {
  ++work_;
  isBusy_ = false;
  timer_.Stop();
}

void HitSender::OnAnswer(const HitQueue::Place& place, const Answer& answer) {
  if (IsTaken(answer.status)) {
    ++counts_.sent;
    OnDone(place);
  } else if (IsRefusedForGood(answer.status)) {
    ++counts_.refused;
    OnDone(place);
  } else {
    OnFailure(answer);
  }
}

void HitSender::OnDone(const HitQueue::Place& place) {
  End();
  delay_.Reset();
  queue_.Remove(place);
  onProgress_();
  Wake();
}

void HitSender::OnFailure(const Answer& answer) {
  const std::chrono::milliseconds asked =
      ParseRetryAfter(answer.retryAfter, hub_.GetClock().Now()).value_or(std::chrono::seconds(0));
  const std::chrono::milliseconds delay = std::max(delay_.Next(), asked);
  Log::Debug(kLogTag, "a hit was not taken (status %d); the next attempt comes in %lld ms",
             static_cast<int>(answer.status), static_cast<long long>(delay.count()));
  WakeAfter(delay);
}

}  // namespace Velmora
