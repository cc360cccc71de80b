#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "VelmoraCore/ExternalModuleServicesInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/SdkError.h"
#include "support/Guarded.h"

namespace TestSupport {

// What a hub would hand to an external module: notes the calls, and answers or throws as told.
class RecordingModuleServices final : public Velmora::Object,
                                      public virtual Velmora::ExternalModuleServicesInterface {
 public:
  struct Call {
    std::string operation{};
    std::shared_ptr<Velmora::ExternalModuleListenerInterface> listener{};
    std::string type{};
    std::string source{};
    std::string text{};  // the state, or its owner
    std::shared_ptr<Velmora::Event> event{};
  };

  // To be set before the first call. Every operation throws what `onCall` throws.
  std::function<void()> onCall;
  std::optional<std::string> state;

  std::vector<Call> Calls() const { return calls_.Get(); }

  void RegisterListener(const std::shared_ptr<Velmora::ExternalModuleListenerInterface>& listener,
                        const std::string& eventType, const std::string& eventSource) override {
    Note({.operation = "RegisterListener",
          .listener = listener,
          .type = eventType,
          .source = eventSource});
  }
  void RegisterWildcardListener(
      const std::shared_ptr<Velmora::ExternalModuleListenerInterface>& listener) override {
    Note({.operation = "RegisterWildcardListener", .listener = listener});
  }
  void SetSharedEventState(const std::string& stateJson,
                           const std::shared_ptr<Velmora::Event>& event) override {
    Note({.operation = "SetSharedEventState", .text = stateJson, .event = event});
  }
  void ClearSharedEventStates() override { Note({.operation = "ClearSharedEventStates"}); }
  std::shared_ptr<std::string> GetSharedEventState(
      const std::string& stateOwner, const std::shared_ptr<Velmora::Event>& event) override {
    Note({.operation = "GetSharedEventState", .text = stateOwner, .event = event});
    return state.has_value() ? std::make_shared<std::string>(*state) : nullptr;
  }
  void UnregisterExtension() override { Note({.operation = "UnregisterExtension"}); }

 private:
  void Note(Call call) {
    calls_.With([&](auto& calls) { calls.push_back(std::move(call)); });
    if (onCall) onCall();
  }

  Guarded<std::vector<Call>> calls_;
};

}  // namespace TestSupport
