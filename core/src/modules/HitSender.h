#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "hub/HubModule.h"
#include "modules/HitQueue.h"
#include "modules/HomeTimer.h"
#include "modules/RetryDelay.h"

namespace Velmora {

// Sends the hits of a queue to a collector, one at a time, in order: each is a POST with a JSON
// body that a status of 200 to 299 acknowledges. For the hub's thread, which never waits for the
// network: requests run on the network service's threads, and what comes of them comes home.
//
// A hit that the collector refuses for good (400, 413, 415, 422) is dropped. After any other answer
// and after none it is sent again: after what "Retry-After" asks for and no sooner than after a
// second, which doubles with every failure in a row up to ten minutes.
class HitSender {
 public:
  struct Collector {
    std::string url;
    std::chrono::seconds timeout;  // for each request
    friend bool operator==(const Collector&, const Collector&) = default;
  };
  struct Counts {
    std::size_t sent = 0;
    std::size_t refused = 0;
  };

  // `onProgress` is called whenever a hit is done with, and when there is none left to be sent.
  HitSender(HubContext& hub, HitQueue& queue, std::function<void()> onProgress);

  // Where hits may go; nothing while they may not. What is under way is then given up. Another
  // collector is tried at once.
  void SetCollector(std::optional<Collector> collector);

  // To be called when there may be something to send.
  void Wake();

  const Counts& Total() const { return counts_; }

 private:
  struct Answer {
    std::int32_t status = 0;  // 0: none came
    std::string retryAfter;
  };

  void Post(const HitQueue::Hit& hit);
  void Begin(std::chrono::milliseconds wait, std::function<void()> then);
  void WakeAfter(std::chrono::milliseconds wait);
  void End();
  void OnAnswer(const HitQueue::Place& place, const Answer& answer);
  void OnDone(const HitQueue::Place& place);
  void OnFailure(const Answer& answer);

  HubContext& hub_;
  HitQueue& queue_;
  const std::function<void()> onProgress_;
  const HubContext::Poster wayHome_;

  std::optional<Collector> collector_;
  std::uint64_t work_ = 0;  // the newest request or wait; the answer to an older one is ignored
  bool isBusy_ = false;     // with a request or a wait
  HomeTimer timer_;
  RetryDelay delay_;
  Counts counts_;
};

}  // namespace Velmora
