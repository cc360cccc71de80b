#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "QEXCore_iOS/QEXExtension.h"
#include "QEXCore_iOS/QEXExtensionApi.h"
#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "QEXCore_iOS/QEXExtensionListener.h"
#include "VelmoraCore/Event.h"
#include "support/Guarded.h"

// Extensions and listeners that do as a test says. Since the SDK makes the instances, the script
// belongs to the class; `Id` tells classes apart.
namespace TestSupport {

using ExtensionEvent = std::shared_ptr<QEXExtensionEvent>;

// How many instances of any of these classes there are.
inline std::atomic<int> liveExtensions{0};
inline std::atomic<int> liveListeners{0};

// The APIs that these extensions were given, and the events that these listeners heard, as the
// public face shows them and as the core has them: whether any of them is still alive.
template <class T>
class Watched {
 public:
  void Add(const std::shared_ptr<T>& object) {
    seen_.With([&](auto& all) {
      constexpr std::size_t kEnoughToTidyUp = 1'000;
      if (all.size() % kEnoughToTidyUp == 0) {
        std::erase_if(all, [](const auto& each) { return each.expired(); });
      }
      all.push_back(object);
    });
  }
  std::size_t CountLive() const {
    return seen_.With([](const auto& all) {
      return static_cast<std::size_t>(
          std::count_if(all.begin(), all.end(), [](const auto& each) { return !each.expired(); }));
    });
  }

 private:
  Guarded<std::vector<std::weak_ptr<T>>> seen_;
};
inline Watched<QEXExtensionApi> watchedApis;
inline Watched<QEXExtensionEvent> watchedEvents;
inline Watched<Velmora::Event> watchedCoreEvents;

struct ExtensionScript {
  std::optional<std::string> name = "test.extension";
  std::function<void(QEXExtension&)> onInit{};
  std::function<void()> onName{};
  std::function<void(QEXExtension&)> onUnregister{};
  bool initGivesNothing = false;
  bool callsBaseOnUnregister = true;
};

template <int Id = 0>
class ScriptedExtension : public QEXExtension {
 public:
  static inline Guarded<ExtensionScript> script;
  static inline Guarded<std::vector<std::string>> calls;  // "name", "init", "error 3", ...

  static void Reset(ExtensionScript newScript) {
    script.Set(std::move(newScript));
    calls.Set({});
  }

  ScriptedExtension() { ++liveExtensions; }
  ~ScriptedExtension() override { --liveExtensions; }

  std::shared_ptr<QEXExtension> init() override {
    Note("init");
    watchedApis.Add(api());
    const ExtensionScript current = script.Get();
    if (current.onInit) current.onInit(*this);
    return current.initGivesNothing ? nullptr : QEXExtension::init();
  }
  std::optional<std::string> name() const override {
    Note("name");
    const ExtensionScript current = script.Get();
    if (current.onName) current.onName();
    return current.name;
  }
  std::optional<std::string> version() const override { return "1.0.0"; }
  void unexpectedError(const Platform::Error& error) override {
    Note("error " + error.Domain() + " " + std::to_string(error.Code()));
  }
  void onUnregister() override {
    Note("unregister");
    const ExtensionScript current = script.Get();
    if (current.onUnregister) current.onUnregister(*this);
    if (current.callsBaseOnUnregister) QEXExtension::onUnregister();
  }

 private:
  static void Note(std::string call) {
    calls.With([&](auto& all) { all.push_back(std::move(call)); });
  }
};

template <int Id = 0>
class ScriptedListener : public QEXExtensionListener {
 public:
  using OnHear = std::function<void(QEXExtensionListener&, const ExtensionEvent&)>;
  static inline Guarded<OnHear> onHear;
  static inline Guarded<std::vector<std::string>> heard;  // names, once onHear has returned

  static void Reset(OnHear newOnHear = nullptr) {
    onHear.Set(std::move(newOnHear));
    heard.Set({});
  }
  static std::size_t CountHeard() {
    return heard.With([](const auto& names) { return names.size(); });
  }

  ScriptedListener() { ++liveListeners; }
  ~ScriptedListener() override { --liveListeners; }

  void hear(const ExtensionEvent& event) override {
    watchedEvents.Add(event);
    watchedCoreEvents.Add(event->getInternalEvent());
    const Note note{event->eventName().value_or("")};
    if (const OnHear act = onHear.Get()) act(*this, event);
  }

 private:
  // Also when onHear throws.
  struct Note {
    std::string name;
    ~Note() {
      heard.With([this](auto& names) { names.push_back(name); });
    }
  };
};

}  // namespace TestSupport
