#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "hub/HubModule.h"

namespace Velmora {

// Turns every tracked action or state into an event of the source "prepared", with the time at
// which it was tracked; not so when the visitor has opted out by then, nor when that cannot be
// known. Sends nothing yet.
class AnalyticsModule final : public HubModule {
 public:
  std::string GetName() const override;
  void Attach(HubContext& hub) override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  void OnRequest(const EventPointer& event);
  std::optional<MobilePrivacyStatus> StatusAt(const EventPointer& event);

  HubContext* hub_ = nullptr;

  // The configuration last looked at, held so that no other text can have its address, and what it
  // said.
  std::shared_ptr<const std::string> knownConfiguration_;
  std::optional<MobilePrivacyStatus> knownStatus_;
};

}  // namespace Velmora
