#include "HubObserver.h"

#include <algorithm>
#include <iostream>
#include <utility>
#include <vector>

#include <QEXCore_iOS/GetCore.h>
#include <QEXCore_iOS/Platform/Host.h>
#include <VelmoraCore/Core.h>
#include <VelmoraCore/EventData.h>
#include <VelmoraCore/ExternalModuleListenerInterface.h>
#include <VelmoraCore/ExternalModuleServicesInterface.h>
#include <VelmoraCore/Object.h>
#include <VelmoraCore/SdkError.h>
#include <VelmoraCore/Variant.h>

namespace Storefront {

using EventPointer = std::shared_ptr<Velmora::Event>;
using Services = std::shared_ptr<Velmora::ExternalModuleServicesInterface>;

struct HubObserver::Notes {
  OnEvent onEvent;
  mutable std::mutex mutex;
  mutable std::condition_variable heard;
  std::vector<EventPointer> events;
  Services services;
};

namespace {

bool HasText(const Velmora::Event& event, const std::string& key, const std::string& text) {
  const auto data = event.GetData();
  const auto value = data ? data->Get(key) : nullptr;
  return value && value->GetKind() == Velmora::VariantKind::String && value->GetString() == text;
}

class Listener final : public Velmora::Object,
                       public virtual Velmora::ExternalModuleListenerInterface {
 public:
  explicit Listener(std::function<void(const EventPointer&)> onHear) : onHear_(std::move(onHear)) {}

  void OnRegistered() override {}
  void Hear(const EventPointer& event) override { onHear_(event); }
  void OnUnregistered() override {}

 private:
  const std::function<void(const EventPointer&)> onHear_;
};

class Module final : public Velmora::Object, public virtual Velmora::ExternalModuleInterface {
 public:
  Module(std::function<void(const Services&)> onJoin,
         std::function<void(const EventPointer&)> onHear)
      : onJoin_(std::move(onJoin)), onHear_(std::move(onHear)) {}

  std::string GetModuleName() override { return "storefront.observer"; }
  std::string GetModuleVersion() override { return "1.0.0"; }
  void OnRegister(const Services& services) override {
    onJoin_(services);
    services->RegisterWildcardListener(std::make_shared<Listener>(onHear_));
  }
  void OnUnexpectedError(Velmora::SdkError& error) override {
    std::cerr << "the observer had a problem: " << error.what() << '\n';
  }
  void OnUnregister() override {}

 private:
  const std::function<void(const Services&)> onJoin_;
  const std::function<void(const EventPointer&)> onHear_;
};

}  // namespace

HubObserver::HubObserver(OnEvent onEvent) : notes_(std::make_shared<Notes>()) {
  notes_->onEvent = std::move(onEvent);
  const auto join = [notes = notes_](const Services& services) {
    const std::lock_guard lock(notes->mutex);
    notes->services = services;
  };
  const auto hear = [notes = notes_](const EventPointer& event) {
    if (notes->onEvent) notes->onEvent(*event);
    const std::lock_guard lock(notes->mutex);
    notes->events.push_back(event);
    notes->heard.notify_all();
  };
  GetCore()->RegisterExternalModule(
      std::make_shared<Module>(join, hear), [](Velmora::SdkError& error) {
        std::cerr << "the observer was refused: " << error.what() << '\n';
      });
}

Platform::Value HubObserver::StateOf(const std::string& owner) const {
  Services services;
  {
    const std::lock_guard lock(notes_->mutex);
    services = notes_->services;
  }
  if (services == nullptr) return {};
  const std::shared_ptr<std::string> state = services->GetSharedEventState(owner, nullptr);
  if (state == nullptr || state->empty()) return {};
  return Platform::Host::Current()->jsonSerialization->Parse(*state, nullptr);
}

int HubObserver::Count(const std::string& type, const std::string& source, const std::string& key,
                       const std::string& text) const {
  const std::lock_guard lock(notes_->mutex);
  return static_cast<int>(
      std::count_if(notes_->events.begin(), notes_->events.end(), [&](const EventPointer& event) {
        return event->GetType() == type && event->GetSource() == source &&
               (key.empty() || HasText(*event, key, text));
      }));
}

bool HubObserver::WaitUntil(const Condition& holds, std::chrono::seconds patience) const {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const auto countEvents = [this] { return notes_->events.size(); };
  while (true) {
    // Counted before the condition is asked, so that nothing heard meanwhile is slept over.
    std::unique_lock lock(notes_->mutex);
    const std::size_t count = countEvents();
    lock.unlock();
    if (holds()) return true;
    lock.lock();
    if (!notes_->heard.wait_until(lock, deadline, [&] { return countEvents() > count; })) {
      return false;
    }
  }
}

}  // namespace Storefront
