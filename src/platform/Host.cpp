#include "QEXCore_iOS/Platform/Host.h"

#include <mutex>
#include <stdexcept>
#include <utility>

namespace Platform {
namespace {

struct Installed {
  std::mutex mutex;
  std::shared_ptr<const Host> host;
};

// Never destroyed: threads may ask for the host until the process ends.
Installed& TheInstalled() {
  static auto* installed = new Installed;
  return *installed;
}

bool IsComplete(const Host& host) {
  return host.application && host.base64 && host.bundle && host.device && host.digest &&
         host.fileManager && host.jsonSerialization && host.localNotifications && host.locale &&
         host.mainQueue && host.notificationCenter && host.processInfo && host.reachability &&
         host.screen && host.systemLog && host.telephony && host.ui && host.urlParser &&
         host.urlSession && host.userDefaults && host.userNotificationCenter && host.uuidGenerator;
}

}  // namespace

void Host::Install(Host host) {
  if (!IsComplete(host)) {
    throw std::invalid_argument("Platform::Host::Install: a port is missing");
  }
  auto replacement = std::make_shared<const Host>(std::move(host));
  Installed& installed = TheInstalled();
  const std::lock_guard lock(installed.mutex);
  // The previous host goes after the lock has been released.
  installed.host.swap(replacement);
}

std::shared_ptr<const Host> Host::Current() {
  Installed& installed = TheInstalled();
  const std::lock_guard lock(installed.mutex);
  if (!installed.host) {
    installed.host = std::make_shared<const Host>(CreateDefault());
  }
  return installed.host;
}

}  // namespace Platform
