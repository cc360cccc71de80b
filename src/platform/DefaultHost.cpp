#include <memory>

#include "QEXCore_iOS/Platform/Host.h"
#include "platform/headless/HeadlessLocalNotifications.h"
#include "platform/headless/HeadlessScreen.h"
#include "platform/headless/HeadlessUi.h"
#include "platform/headless/HeadlessUserNotificationCenter.h"
#include "platform/headless/InProcessNotificationCenter.h"
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

namespace Platform {

Host Host::CreateDefault() {
  const auto systemLog = std::make_shared<LinuxSystemLog>();
  const auto mainQueue = std::make_shared<GlibMainQueue>(systemLog);
  return {
      .application = std::make_shared<GioApplication>(),
      .base64 = std::make_shared<OpenSslBase64>(),
      .bundle = std::make_shared<LinuxBundle>(),
      .device = std::make_shared<LinuxDevice>(),
      .digest = std::make_shared<OpenSslDigest>(),
      .fileManager = std::make_shared<LinuxFileManager>(),
      .jsonSerialization = std::make_shared<LinuxJsonSerialization>(),
      .localNotifications = std::make_shared<HeadlessLocalNotifications>(),
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
      .userDefaults = std::make_shared<SqliteUserDefaultsProvider>(),
      .userNotificationCenter = std::make_shared<HeadlessUserNotificationCenter>(),
      .uuidGenerator = std::make_shared<OpenSslUuidGenerator>(),
  };
}

}  // namespace Platform
