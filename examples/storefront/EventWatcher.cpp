#include "EventWatcher.h"

#include <iostream>
#include <utility>

#include <VelmoraCore/ExternalModuleListenerInterface.h>
#include <VelmoraCore/ExternalModuleServicesInterface.h>
#include <VelmoraCore/Object.h>
#include <VelmoraCore/SdkError.h>

namespace Storefront {
namespace {

using OnEvent = std::function<void(const Velmora::Event&)>;

class WatchingListener : public Velmora::Object,
                         public virtual Velmora::ExternalModuleListenerInterface {
 public:
  explicit WatchingListener(OnEvent onEvent) : onEvent_(std::move(onEvent)) {}

  void OnRegistered() override {}
  void Hear(const std::shared_ptr<Velmora::Event>& event) override { onEvent_(*event); }
  void OnUnregistered() override {}

 private:
  OnEvent onEvent_;
};

class EventWatcher : public Velmora::Object, public virtual Velmora::ExternalModuleInterface {
 public:
  explicit EventWatcher(OnEvent onEvent) : onEvent_(std::move(onEvent)) {}

  std::string GetModuleName() override { return "storefront.watcher"; }
  std::string GetModuleVersion() override { return "1.0.0"; }
  void OnRegister(
      const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services) override {
    services->RegisterWildcardListener(std::make_shared<WatchingListener>(onEvent_));
  }
  void OnUnexpectedError(Velmora::SdkError& error) override {
    std::cerr << "the watcher had a problem: " << error.what() << '\n';
  }
  void OnUnregister() override {}

 private:
  OnEvent onEvent_;
};

}  // namespace

std::shared_ptr<Velmora::ExternalModuleInterface> MakeEventWatcher(OnEvent onEvent) {
  return std::make_shared<EventWatcher>(std::move(onEvent));
}

}  // namespace Storefront
