#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Application.h"
#include "QEXCore_iOS/Platform/Base64.h"
#include "QEXCore_iOS/Platform/Bundle.h"
#include "QEXCore_iOS/Platform/Device.h"
#include "QEXCore_iOS/Platform/Digest.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/FileManager.h"
#include "QEXCore_iOS/Platform/HostOptions.h"
#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "QEXCore_iOS/Platform/LocalNotifications.h"
#include "QEXCore_iOS/Platform/Locale.h"
#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/NotificationCenter.h"
#include "QEXCore_iOS/Platform/ProcessInfo.h"
#include "QEXCore_iOS/Platform/Reachability.h"
#include "QEXCore_iOS/Platform/Screen.h"
#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/Telephony.h"
#include "QEXCore_iOS/Platform/Ui.h"
#include "QEXCore_iOS/Platform/UrlParser.h"
#include "QEXCore_iOS/Platform/UrlSession.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "QEXCore_iOS/Platform/UserNotificationCenter.h"
#include "QEXCore_iOS/Platform/Uuid.h"

namespace Platform {

// The device that the SDK runs on: one of each port, none of them null.
//
// To run on another device, or to change one part of this one, take CreateDefault(), replace
// members, and Install the result before the first call into the SDK.
struct QEXCORE_API Host {
  std::shared_ptr<Application> application;
  std::shared_ptr<Base64> base64;
  std::shared_ptr<Bundle> bundle;
  std::shared_ptr<Device> device;
  std::shared_ptr<Digest> digest;
  std::shared_ptr<FileManager> fileManager;
  std::shared_ptr<JsonSerialization> jsonSerialization;
  std::shared_ptr<LocalNotifications> localNotifications;
  std::shared_ptr<Locale> locale;
  std::shared_ptr<MainQueue> mainQueue;
  std::shared_ptr<NotificationCenter> notificationCenter;
  std::shared_ptr<ProcessInfo> processInfo;
  std::shared_ptr<NetworkReachability> reachability;
  std::shared_ptr<Screen> screen;
  std::shared_ptr<SystemLog> systemLog;
  std::shared_ptr<Telephony> telephony;
  std::shared_ptr<Ui> ui;
  std::shared_ptr<UrlParser> urlParser;
  std::shared_ptr<UrlSession> urlSession;
  std::shared_ptr<UserDefaultsProvider> userDefaults;
  std::shared_ptr<UserNotificationCenter> userNotificationCenter;
  std::shared_ptr<UuidGenerator> uuidGenerator;

  // The ports of the operating system that the library was built for, without a screen.
  static Host CreateDefault();
  static Host CreateDefault(const HostOptions& options);

  // Makes `host` the device for every later call, in the whole process. Throws
  // std::invalid_argument when a member is null. Call it before the first call into the SDK:
  // services keep ports that they have taken.
  static void Install(Host host);

  // The installed host, or the default one, made at the first call. Safe from any thread.
  static std::shared_ptr<const Host> Current();
};

}  // namespace Platform
