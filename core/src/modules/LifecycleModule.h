#pragma once

#include <memory>

#include "hub/HubModule.h"

namespace Velmora {

// Follows the app's start and pause. After each it publishes, and tells in an event of the source
// "response", the phase and, when started, the context data: what the device says of the app and of
// itself, and what the app gave with its last start, which wins. Counts no sessions yet.
class LifecycleModule final : public HubModule {
 public:
  std::string GetName() const override;
  void Attach(HubContext& hub) override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  void OnRequest(const EventPointer& event);
  void OnStart(const EventPointer& event);
  void OnPause(const EventPointer& event);
  void Tell(const VariantMap& state, const EventPointer& event);
  VariantMap DeviceContext() const;

  HubContext* hub_ = nullptr;
  bool isStarted_ = false;
};

}  // namespace Velmora
