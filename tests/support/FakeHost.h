#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Host.h"
#include "support/FakeApplication.h"
#include "support/FakeBundle.h"
#include "support/FakeDevice.h"
#include "support/FakeFileManager.h"
#include "support/FakeLocale.h"
#include "support/FakeMainQueue.h"
#include "support/FakeNotifications.h"
#include "support/FakeProcessInfo.h"
#include "support/FakeReachability.h"
#include "support/FakeScreen.h"
#include "support/FakeSystemLog.h"
#include "support/FakeTelephony.h"
#include "support/FakeUi.h"
#include "support/FakeUrlSession.h"
#include "support/FakeUserDefaults.h"

namespace TestSupport {

// A device of the test's choice, installed as the process's device for as long as the object lives;
// the device before it then comes back. JSON, base64, digests, URLs and identifiers are the real
// ones; files are real too, save that faults can be switched on. The main
// queue runs when the test runs it; all hosts share the process's notification centre.
class FakeHost {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  const std::shared_ptr<FakeApplication> application = std::make_shared<FakeApplication>();
  const std::shared_ptr<FakeBundle> bundle = std::make_shared<FakeBundle>();
  const std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
  const std::shared_ptr<FakeFileManager> fileManager = std::make_shared<FakeFileManager>();
  const std::shared_ptr<FakeLocalNotifications> localNotifications =
      std::make_shared<FakeLocalNotifications>();
  const std::shared_ptr<FakeLocale> locale = std::make_shared<FakeLocale>();
  const std::shared_ptr<Platform::NotificationCenter> notificationCenter;
  const std::shared_ptr<FakeProcessInfo> processInfo = std::make_shared<FakeProcessInfo>();
  const std::shared_ptr<FakeReachability> reachability = std::make_shared<FakeReachability>();
  const std::shared_ptr<FakeScreen> screen = std::make_shared<FakeScreen>();
  const std::shared_ptr<FakeSystemLog> systemLog = std::make_shared<FakeSystemLog>();
  const std::shared_ptr<FakeMainQueue> mainQueue = std::make_shared<FakeMainQueue>(systemLog);
  const std::shared_ptr<FakeTelephony> telephony = std::make_shared<FakeTelephony>();
  const std::shared_ptr<FakeUrlSession> urlSession = std::make_shared<FakeUrlSession>();
  const std::shared_ptr<FakeUi> ui = std::make_shared<FakeUi>(mainQueue);
  const std::shared_ptr<FakeUserDefaultsProvider> userDefaults =
      std::make_shared<FakeUserDefaultsProvider>();
  const std::shared_ptr<FakeUserNotificationCenter> userNotificationCenter =
      std::make_shared<FakeUserNotificationCenter>();

  // The host that was installed, to be changed and installed anew where a test needs another part
  // of it.
  Platform::Host Copy() const;

 private:
  const std::shared_ptr<const Platform::Host> former_;
};

}  // namespace TestSupport
