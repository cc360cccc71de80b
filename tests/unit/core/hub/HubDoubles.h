#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "VelmoraCore/Object.h"
#include "support/Guarded.h"
#include "support/WaitUntil.h"

using EventPointer = std::shared_ptr<Velmora::Event>;
using EventHandler = std::function<void(const EventPointer&)>;
using ModuleServices = std::shared_ptr<Velmora::ExternalModuleServicesInterface>;
using CallLog = TestSupport::Guarded<std::vector<std::string>>;

inline void Add(CallLog& log, std::string call) {
  log.With([&](auto& calls) { calls.push_back(std::move(call)); });
}

// Keeps what it hears. Calls `onHear`, when it was given one, after that.
class RecordingListener final : public Velmora::Object,
                                public virtual Velmora::ExternalModuleListenerInterface {
 public:
  explicit RecordingListener(EventHandler onHear = nullptr) : onHear_(std::move(onHear)) {}

  std::vector<EventPointer> Heard() const { return heard_.Get(); }
  std::size_t Count() const {
    return heard_.With([](const auto& heard) { return heard.size(); });
  }
  bool WaitForCount(std::size_t count) const {
    return TestSupport::WaitUntil([&] { return Count() >= count; });
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const EventPointer& event : Heard()) names.push_back(event->GetName());
    return names;
  }

  // "registered", "heard <name>", "unregistered", in order.
  std::vector<std::string> Calls() const { return calls_.Get(); }

  void OnRegistered() override { Add(calls_, "registered"); }
  void Hear(const EventPointer& event) override {
    Add(calls_, "heard " + event->GetName());
    heard_.With([&](auto& heard) { heard.push_back(event); });
    if (onHear_) onHear_(event);
  }
  void OnUnregistered() override { Add(calls_, "unregistered"); }

 private:
  const EventHandler onHear_;
  TestSupport::Guarded<std::vector<EventPointer>> heard_;
  CallLog calls_;
};

// A module that keeps the calls it gets: "register", "error <code>", "unregister".
class RecordingModule final : public Velmora::Object,
                              public virtual Velmora::ExternalModuleInterface {
 public:
  explicit RecordingModule(std::string name) : name_(std::move(name)) {}

  // To be set before the module is registered; called on the module's thread.
  std::function<void(const ModuleServices&)> onRegister;
  std::function<void()> onError;
  std::function<void()> onUnregister;

  std::vector<std::string> Calls() const { return calls_.Get(); }
  bool WaitForCalls(const std::vector<std::string>& calls) const {
    return TestSupport::WaitUntil([&] { return Calls() == calls; });
  }
  ModuleServices Services() const { return services_.Get(); }

  std::string GetModuleName() override { return name_; }
  std::string GetModuleVersion() override { return "1.2.3"; }
  void OnRegister(const ModuleServices& services) override {
    services_.Set(services);  // first: who waits for the call asks for them
    Add(calls_, "register");
    if (onRegister) onRegister(services);
  }
  void OnUnexpectedError(Velmora::SdkError& error) override {
    Add(calls_, "error " + error.GetCode());
    if (onError) onError();
  }
  void OnUnregister() override {
    Add(calls_, "unregister");
    if (onUnregister) onUnregister();
  }

 private:
  const std::string name_;
  CallLog calls_;
  TestSupport::Guarded<ModuleServices> services_;
};

inline EventPointer NewEvent(const std::string& name, const std::string& type = "test.type",
                             const std::string& source = "test.source") {
  return std::make_shared<Velmora::Event>(name, type, source);
}

// The code of what `attempt` throws; empty when it throws nothing.
inline std::string CodeThrownBy(const std::function<void()>& attempt) {
  try {
    attempt();
    return {};
  } catch (const Velmora::SdkError& error) {
    return error.GetCode();
  }
}
