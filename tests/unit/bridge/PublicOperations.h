#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "QEXCore_iOS/QEXCore.h"
#include "support/ScriptedExtension.h"

namespace TestSupport {

// A public operation that reaches the core, with a call of it that leads to no log line.
struct PublicOperation {
  std::string name;
  std::string coreOperation;
  std::function<void()> call;
};

inline std::ostream& operator<<(std::ostream& out, const PublicOperation& operation) {
  return out << operation.name;
}

inline std::vector<PublicOperation> PublicOperations() {
  return {
      {"configureWithAppId", "ConfigureWithAppId", [] { QEXCore::configureWithAppId("app"); }},
      {"configureWithFileInPath", "ConfigureWithFileInPath",
       [] { QEXCore::configureWithFileInPath("/a.json"); }},
      {"updateConfiguration", "UpdateConfiguration",
       [] {
         QEXCore::updateConfiguration({{"key", 1}});
       }},
      {"start", "Start", [] { QEXCore::start({}); }},
      {"setPrivacyStatus", "SetPrivacyStatus",
       [] { QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedIn); }},
      {"getPrivacyStatus", "GetPrivacyStatus",
       [] { QEXCore::getPrivacyStatus([](QEXMobilePrivacyStatus) {}); }},
      {"getSdkIdentities", "GetSDKIdentities",
       [] { QEXCore::getSdkIdentities([](const std::optional<std::string>&) {}); }},
      {"setAdvertisingIdentifier", "SetAdvertisingIdentifier",
       [] { QEXCore::setAdvertisingIdentifier("id"); }},
      {"setPushIdentifier", "SetPushIdentifier",
       [] { QEXCore::setPushIdentifier(Platform::Value::FromData({1})); }},
      {"trackAction", "Track",
       [] {
         QEXCore::trackAction("action", {{"key", "value"}});
       }},
      {"trackState", "Track",
       [] {
         QEXCore::trackState("state", {{"key", "value"}});
       }},
      {"collectPii", "CollectPii",
       [] {
         QEXCore::collectPii({{"key", "value"}});
       }},
      {"lifecycleStart", "LifecycleStart",
       [] {
         QEXCore::lifecycleStart({{"key", "value"}});
       }},
      {"lifecyclePause", "LifecyclePause", [] { QEXCore::lifecyclePause(); }},
      {"collectLaunchInfo", "CollectData",
       [] {
         QEXCore::collectLaunchInfo({{"krv_deeplink", "app://"}});
       }},
      {"downloadRules", "DownloadRules", [] { QEXCore::downloadRules(); }},
      {"registerExtension", "RegisterExternalModule",
       [] { QEXCore::registerExtension(Platform::ClassOf<ScriptedExtension<>>(), nullptr); }},
      {"dispatchEvent", "DispatchEvent", [] { QEXCore::dispatchEvent(nullptr, nullptr); }},
      {"dispatchEventWithResponseCallback", "DispatchEventWithResponseCallback",
       [] { QEXCore::dispatchEventWithResponseCallback(nullptr, nullptr, nullptr); }},
      {"dispatchResponseEvent", "DispatchResponseEvent",
       [] { QEXCore::dispatchResponseEvent(nullptr, nullptr, nullptr); }},
  };
}

}  // namespace TestSupport
