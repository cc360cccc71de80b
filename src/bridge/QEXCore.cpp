#include "QEXCore_iOS/QEXCore.h"

#include <memory>
#include <utility>

#include "QEXCore_iOS/GetCore.h"
#include "VelmoraCore/Core.h"
#include "VelmoraCore/EventData.h"
#include "VelmoraCore/Log.h"
#include "bridge/AnalyticsKeys.h"
#include "bridge/DataMarshaller.h"
#include "bridge/HostCall.h"
#include "bridge/PublicEnums.h"
#include "interop/AppInfo.h"
#include "interop/CleanCollections.h"
#include "interop/HexConversion.h"
#include "interop/StringCollections.h"
#include "interop/StringConversion.h"
#include "interop/VariantConversion.h"

using Velmora::GuardHostCall;
using Velmora::ToCppString;

namespace {

constexpr char kVersion[] = "1.0.0";

// How an operation complains about entries that it drops; `format` takes their description.
struct Complaint {
  const char* tag;
  const char* format;
};

constexpr Complaint kPiiComplaint = {
    "Collect PII",
    "found invalid entries in PII data, removing (requires <NSString*, NSString*>): %s"};
constexpr Complaint kLifecycleComplaint = {
    "Lifecycle Start",
    "found invalid entries in context data, removing (requires <NSString*, NSString*>): %s"};
constexpr Complaint kAnalyticsComplaint = {
    "Analytics",
    "Context Data requires NSDictionary<NSString*, NSString*>.  Invalid entries have been removed: "
    "%s"};

Velmora::StringMap CleanedStrings(const Platform::Value& dictionary, const Complaint& complaint) {
  Platform::Value invalid;
  const Platform::Value cleaned = Velmora::CleanDictionary(dictionary, &invalid);
  if (invalid.Count() > 0 && Velmora::Log::Precheck(Velmora::LoggingMode::Warning)) {
    Velmora::Log::Warning(complaint.tag, complaint.format, invalid.Description().c_str());
  }
  return Velmora::ToStringMap(cleaned);
}

void Track(const char* nameKey, const std::optional<std::string>& name,
           const Platform::Value& data) {
  // The core comes before the cleaning: making it is what gives the warning a log to go to.
  const std::shared_ptr<Velmora::Core> core = GetCore();
  const auto eventData = std::make_shared<Velmora::EventData>();
  eventData->PutString(nameKey, ToCppString(name));
  eventData->PutStringMap(Velmora::ANALYTICS_CONTEXT_DATA,
                          CleanedStrings(data, kAnalyticsComplaint));
  core->Track(eventData);
}

}  // namespace

std::string QEXCore::extensionVersion() { return kVersion; }

void QEXCore::configureWithAppId(const std::optional<std::string>& appId) {
  GuardHostCall("configureWithAppId", [&] { GetCore()->ConfigureWithAppId(ToCppString(appId)); });
}

void QEXCore::configureWithFileInPath(const std::optional<std::string>& filePath) {
  GuardHostCall("configureWithFileInPath",
                [&] { GetCore()->ConfigureWithFileInPath(ToCppString(filePath)); });
}

void QEXCore::updateConfiguration(const Platform::Value& configuration) {
  GuardHostCall("updateConfiguration",
                [&] { GetCore()->UpdateConfiguration(Velmora::ToVariantMap(configuration)); });
}

void QEXCore::start(std::function<void()> callback) {
  GuardHostCall("start", [&] {
    GetCore()->Start([callback = std::move(callback)] {
      GuardHostCall("the callback of start", [&] {
        if (callback) callback();
      });
    });
  });
}

void QEXCore::setAppGroup(const std::optional<std::string>& appGroup) {
  GuardHostCall("setAppGroup",
                [&] { Velmora::AppInfo::SetAppGroup(Velmora::ToNSString(ToCppString(appGroup))); });
}

void QEXCore::setLogLevel(QEXMobileLogLevel level) {
  GuardHostCall("setLogLevel", [&] { Velmora::Log::SetLogLevel(Velmora::ToLoggingMode(level)); });
}

void QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus status) {
  GuardHostCall("setPrivacyStatus",
                [&] { GetCore()->SetPrivacyStatus(Velmora::ToMobilePrivacyStatus(status)); });
}

void QEXCore::getPrivacyStatus(std::function<void(QEXMobilePrivacyStatus)> callback) {
  GuardHostCall("getPrivacyStatus", [&] {
    GetCore()->GetPrivacyStatus(
        [callback = std::move(callback)](const Velmora::MobilePrivacyStatus& status) {
          GuardHostCall("the callback of getPrivacyStatus", [&] {
            if (callback) callback(Velmora::ToQEXMobilePrivacyStatus(status));
          });
        });
  });
}

void QEXCore::getSdkIdentities(std::function<void(const std::optional<std::string>&)> callback) {
  GuardHostCall("getSdkIdentities", [&] {
    GetCore()->GetSDKIdentities([callback = std::move(callback)](const std::string& identities) {
      GuardHostCall("the callback of getSdkIdentities", [&] {
        if (callback) callback(Velmora::ToNSString(identities));
      });
    });
  });
}

void QEXCore::setAdvertisingIdentifier(const std::optional<std::string>& identifier) {
  GuardHostCall("setAdvertisingIdentifier",
                [&] { GetCore()->SetAdvertisingIdentifier(ToCppString(identifier)); });
}

void QEXCore::setPushIdentifier(const Platform::Value& deviceToken) {
  GuardHostCall("setPushIdentifier", [&] {
    GetCore()->SetPushIdentifier(ToCppString(Velmora::ToHexFromEncodedData(deviceToken)));
  });
}

void QEXCore::trackAction(const std::optional<std::string>& action, const Platform::Value& data) {
  GuardHostCall("trackAction", [&] { Track(Velmora::ANALYTICS_TRACK_ACTION, action, data); });
}

void QEXCore::trackState(const std::optional<std::string>& state, const Platform::Value& data) {
  GuardHostCall("trackState", [&] { Track(Velmora::ANALYTICS_TRACK_STATE, state, data); });
}

void QEXCore::collectPii(const Platform::Value& data) {
  GuardHostCall("collectPii", [&] {
    const std::shared_ptr<Velmora::Core> core = GetCore();
    core->CollectPii(CleanedStrings(data, kPiiComplaint));
  });
}

void QEXCore::lifecycleStart(const Platform::Value& additionalContextData) {
  GuardHostCall("lifecycleStart", [&] {
    const std::shared_ptr<Velmora::Core> core = GetCore();
    core->LifecycleStart(CleanedStrings(additionalContextData, kLifecycleComplaint));
  });
}

void QEXCore::lifecyclePause() {
  GuardHostCall("lifecyclePause", [&] { GetCore()->LifecyclePause(); });
}

void QEXCore::collectLaunchInfo(const Platform::Value& launchInfo) {
  GuardHostCall("collectLaunchInfo", [&] {
    Velmora::DataMarshaller marshaller;
    marshaller.marshalLaunchInfo(launchInfo);
    GetCore()->CollectData(Velmora::ToVariantMap(marshaller.getLaunchData()));
  });
}

void QEXCore::downloadRules() {
  GuardHostCall("downloadRules", [&] { GetCore()->DownloadRules(); });
}
