#include "support/FakeHost.h"

#include "platform/headless/InProcessNotificationCenter.h"
#include "platform/linux/LinuxJsonSerialization.h"
#include "platform/linux/OpenSslBase64.h"
#include "platform/linux/OpenSslDigest.h"
#include "platform/linux/OpenSslUuidGenerator.h"
#include "platform/linux/UriparserUrlParser.h"

namespace TestSupport {

namespace {

// One for the process, as on a device: what lives as long as the process observes it once.
std::shared_ptr<Platform::NotificationCenter> NotificationCenterOfProcess() {
  static const auto center = std::make_shared<Platform::InProcessNotificationCenter>();
  return center;
}

}  // namespace

FakeHost::FakeHost()
    : notificationCenter(NotificationCenterOfProcess()), former_(Platform::Host::Current()) {
  Platform::Host::Install(Copy());
}

FakeHost::~FakeHost() { Platform::Host::Install(*former_); }

Platform::Host FakeHost::Copy() const {
  return {
      .application = application,
      .base64 = std::make_shared<Platform::OpenSslBase64>(),
      .bundle = bundle,
      .device = device,
      .digest = std::make_shared<Platform::OpenSslDigest>(),
      .fileManager = fileManager,
      .jsonSerialization = std::make_shared<Platform::LinuxJsonSerialization>(),
      .localNotifications = localNotifications,
      .locale = locale,
      .mainQueue = mainQueue,
      .notificationCenter = notificationCenter,
      .processInfo = processInfo,
      .reachability = reachability,
      .screen = screen,
      .systemLog = systemLog,
      .telephony = telephony,
      .ui = ui,
      .urlParser = std::make_shared<Platform::UriparserUrlParser>(),
      .urlSession = urlSession,
      .userDefaults = userDefaults,
      .userNotificationCenter = userNotificationCenter,
      .uuidGenerator = std::make_shared<Platform::OpenSslUuidGenerator>(),
  };
}

}  // namespace TestSupport
