#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "hub/HubModule.h"
#include "modules/HitQueue.h"
#include "modules/HitSender.h"
#include "modules/StateReader.h"

namespace Velmora {

// Turns every tracked action or state into a hit, which the device keeps until the collector has
// it. Once it is kept, an event of the source "prepared" tells of it: its data are what was
// tracked, the time at which it was, the hit's id and the visitor's. Those that come in one rush
// are written at once, so that the disk does not hold up the hub.
//
// A visitor who has opted in has hits sent; one who has opted out has what waits deleted and
// nothing more tracked; while neither is known, hits wait. Nothing is tracked while the status
// cannot be known.
//
// How many were dropped is the shared state, and a warning says so, once something is sent again.
// A query is answered with numbers.
class AnalyticsModule final : public HubModule {
 public:
  AnalyticsModule();

  std::string GetName() const override;
  void Attach(HubContext& hub) override;
  void End() override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  struct Dropped {
    std::size_t tooMany = 0;
    std::size_t tooOld = 0;
    std::size_t refused = 0;
  };

  void OnRequest(const EventPointer& event);
  void OnQuery(const EventPointer& event);

  // What is written to the device, and what is told of it once it is.
  struct Pending {
    std::string hit;
    EventPointer prepared;
  };
  void Prepare(const EventPointer& event);
  void Flush();

  void FollowConfiguration();
  void FollowStatus(std::optional<MobilePrivacyStatus> status);
  std::optional<HitSender::Collector> FindCollector();
  std::string NewHitId(const Event& event) const;

  void CountDropped();
  void TellDropped();

  HubContext* hub_ = nullptr;
  StateReader configuration_;
  StateReader identity_;
  std::optional<MobilePrivacyStatus> status_;
  std::string unusableUrl_;
  bool hasMissedNetwork_ = false;

  std::vector<Pending> pending_;
  std::optional<HitQueue> queue_;
  std::optional<HitSender> sender_;

  std::size_t droppedInAll_ = 0;
  Dropped untold_;
  std::size_t refusedBefore_ = 0;
};

}  // namespace Velmora
