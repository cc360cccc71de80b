#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "hub/HubModule.h"
#include "modules/LifecycleRecord.h"
#include "modules/StateReader.h"

namespace Velmora {

// Follows the app's start and pause. After each it publishes, and tells in an event of the source
// "response", the phase and, when started, the context data: what the device says of the app and of
// itself, what is known of the installation and its sessions, and what the app gave with its last
// start, which wins. A launch is tracked as the action "lifecycle" with the same context data.
//
// What makes a launch stands in LifecycleRecord. An app that ended neither with a pause nor in good
// order has crashed.
class LifecycleModule final : public HubModule {
 public:
  LifecycleModule();

  std::string GetName() const override;
  void Attach(HubContext& hub) override;
  void End() override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  void OnRequest(const EventPointer& event);
  void OnStart(const EventPointer& event);
  void OnPause(const EventPointer& event);
  void Tell(const VariantMap& state, const EventPointer& event);
  VariantMap BeginOrResume();
  VariantMap DeviceContext() const;
  void LoadRecord();
  void SaveRecord() const;
  std::int64_t Now() const;
  std::chrono::seconds SessionTimeout();

  HubContext* hub_ = nullptr;
  StateReader configuration_;
  std::optional<LifecycleRecord> record_;  // from the first start on
  bool isStarted_ = false;
};

}  // namespace Velmora
