#include "hub/GuardedCalls.h"

#include <memory>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "base/LogText.h"
#include "hub/EventRules.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "EventHub";

}  // namespace

void NameThisThread(const PlatformServicesInterface& services, const std::string& name) {
  TrySwallow([&] {
    const std::shared_ptr<SystemInfoServiceInterface> info = services.GetSystemInfoService();
    if (info != nullptr) info->SetCurrentThreadName(name);
  });
}

void CallGuarded(const std::function<void()>& callback) {
  TryCatch(callback,
           [](SdkError& error) { Log::Error(kLogTag, "a callback failed: %s", error.what()); });
}

void CallModule(const std::string& name, const Event& event, const std::function<void()>& call) {
  TryCatch(call, [&](SdkError& error) {
    Log::Error(kLogTag, "module %s: event %lld failed: %s", name.c_str(),
               static_cast<long long>(event.GetNumber()), error.what());
  });
}

std::string NameOf(ExternalModuleInterface& module) {
  std::string name;
  TryCatch([&] { name = module.GetModuleName(); },
           [](SdkError& error) {
             Log::Error(kLogTag, "a module could not tell its name: %s", error.what());
           });
  return name;
}

std::string VersionOf(ExternalModuleInterface& module) {
  std::string version;
  TrySwallow(
      [&] { version = LogText::Readable(module.GetModuleVersion(), EventRules::kMaxNameLength); });
  return version;
}

}  // namespace Velmora
