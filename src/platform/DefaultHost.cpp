#include <memory>
#include <string>
#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "platform/headless/HeadlessScreen.h"
#include "platform/headless/HeadlessUi.h"
#include "platform/headless/InProcessNotificationCenter.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/DesktopLocalNotifications.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/DesktopUserNotificationCenter.h"
#include "platform/linux/GioApplication.h"
#include "platform/linux/GioReachability.h"
#include "platform/linux/GlibMainQueue.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxDevice.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxJsonSerialization.h"
#include "platform/linux/LinuxLocale.h"
#include "platform/linux/LinuxProcessInfo.h"
#include "platform/linux/LinuxSystemLog.h"
#include "platform/linux/LinuxTelephony.h"
#include "platform/linux/OpenSslBase64.h"
#include "platform/linux/OpenSslDigest.h"
#include "platform/linux/OpenSslUuidGenerator.h"
#include "platform/linux/SqliteUserDefaultsProvider.h"
#include "platform/linux/UriparserUrlParser.h"
#include "platform/linux/UserDirectories.h"

namespace Platform {
namespace {

bool AllowsArbitraryLoads(const Bundle& bundle) {
  return bundle.ObjectForInfoDictionaryKey("NSAppTransportSecurity")
      .Get("NSAllowsArbitraryLoads")
      .AsBool();
}

std::shared_ptr<UrlSession> MakeUrlSession(const HostOptions& options,
                                           const std::shared_ptr<Bundle>& bundle) {
  return std::make_shared<CurlUrlSession>(
      CurlUrlSessionOptions{.extraTrustFile = options.extraTrustFile,
                            .largestBody = options.largestResponseBody,
                            .allowsCleartext = [bundle] { return AllowsArbitraryLoads(*bundle); }});
}

std::shared_ptr<MainQueue> MakeMainQueue(const HostOptions& options,
                                         const std::shared_ptr<SystemLog>& systemLog) {
  if (options.mainQueueThread == HostOptions::MainQueueThread::LoopOrOwn) {
    return std::make_shared<GlibMainQueue>(systemLog);
  }
  return GlibMainQueue::OnLoopOnly(systemLog);
}

// What people call the application.
std::string ApplicationName(const Bundle& bundle) {
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    std::string name = bundle.ObjectForInfoDictionaryKey(key).AsString();
    if (!name.empty()) return name;
  }
  return ProgramName();
}

std::shared_ptr<DesktopNotifier> MakeNotifier(const HostOptions& options,
                                              const std::shared_ptr<Bundle>& bundle,
                                              const std::shared_ptr<MainQueue>& mainQueue,
                                              const std::shared_ptr<SystemLog>& systemLog) {
  auto settings = DesktopNotifier::DefaultSettings([bundle] { return ApplicationName(*bundle); });
  if (options.notificationOpened) {
    settings.activated = [mainQueue, opened = options.notificationOpened](const Value& userInfo) {
      mainQueue->Async([opened, userInfo] { opened(userInfo); });
    };
  }
  return std::make_shared<DesktopNotifier>(std::move(settings), systemLog);
}

}  // namespace

Host Host::CreateDefault() { return CreateDefault(HostOptions()); }

Host Host::CreateDefault(const HostOptions& options) {
  const auto systemLog = std::make_shared<LinuxSystemLog>();
  const auto mainQueue = MakeMainQueue(options, systemLog);
  const auto bundle = std::make_shared<LinuxBundle>();
  const auto uuids = std::make_shared<OpenSslUuidGenerator>();
  const auto notifier = MakeNotifier(options, bundle, mainQueue, systemLog);
  return {
      .application = std::make_shared<GioApplication>(),
      .base64 = std::make_shared<OpenSslBase64>(),
      .bundle = bundle,
      .device = std::make_shared<LinuxDevice>(),
      .digest = std::make_shared<OpenSslDigest>(),
      .fileManager = std::make_shared<LinuxFileManager>(),
      .jsonSerialization = std::make_shared<LinuxJsonSerialization>(),
      .localNotifications = std::make_shared<DesktopLocalNotifications>(
          notifier, uuids, DesktopLocalNotifications::Availability::Off),
      .locale = std::make_shared<LinuxLocale>(),
      .mainQueue = mainQueue,
      .notificationCenter = std::make_shared<InProcessNotificationCenter>(),
      .processInfo = std::make_shared<LinuxProcessInfo>(),
      .reachability = std::make_shared<GioReachability>(),
      .screen = std::make_shared<HeadlessScreen>(),
      .systemLog = systemLog,
      .telephony = std::make_shared<LinuxTelephony>(),
      .ui = std::make_shared<HeadlessUi>(systemLog, mainQueue),
      .urlParser = std::make_shared<UriparserUrlParser>(),
      .urlSession = MakeUrlSession(options, bundle),
      .userDefaults = std::make_shared<SqliteUserDefaultsProvider>(),
      .userNotificationCenter = std::make_shared<DesktopUserNotificationCenter>(notifier, uuids),
      .uuidGenerator = uuids,
  };
}

}  // namespace Platform
