#include "services/ui/KRVLocalNotificationHandler.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "services/ui/MainQueueWork.h"

using Velmora::Log;
using Velmora::SdkError;

namespace {

constexpr const char* kLogTag = "LocalNotificationHandler";

}  // namespace

struct KRVLocalNotificationHandler::Request {
  Text identifier;
  Text content;
  Text sound;
  Text category;
  double delay = 0;
  double fireDate = 0;
  Text userInfo;

  // Not-a-number is a date, too.
  bool HasFireDate() const { return fireDate < 0 || fireDate > 0 || fireDate != fireDate; }
};

bool KRVLocalNotificationHandler::isUNUserNotificationSupported() {
  bool isSupported = false;
  Velmora::TrySwallow(
      [&] { isSupported = Platform::Host::Current()->userNotificationCenter->IsSupported(); });
  return isSupported;
}

bool KRVLocalNotificationHandler::isUILocalNotificationSupported() {
  bool isSupported = false;
  Velmora::TrySwallow(
      [&] { isSupported = Platform::Host::Current()->localNotifications->IsSupported(); });
  return isSupported;
}

void KRVLocalNotificationHandler::scheduleWithIdentifier(const Text& identifier,
                                                         const Text& content, const Text& sound,
                                                         const Text& category, double delay,
                                                         const Text& /*deepLink*/, double fireDate,
                                                         const Text& userInfo) {
  Velmora::OnMainQueue([request = Request{identifier, content, sound, category, delay, fireDate,
                                          userInfo}] { Schedule(request); });
}

void KRVLocalNotificationHandler::Schedule(const Request& request) {
  const Platform::Value userInfo = ParseUserInfo(request);
  if (isUNUserNotificationSupported()) {
    Velmora::TryCatch([&] { AddNotificationRequest(request, userInfo); },
                      [](SdkError& error) {
                        Log::Error(kLogTag,
                                   "Unable to show notification with UNNotificationRequest %s %s",
                                   error.GetCode().c_str(), error.GetMessage().c_str());
                      });
  } else if (isUILocalNotificationSupported()) {
    Velmora::TryCatch([&] { ScheduleLocalNotification(request, userInfo); },
                      [](SdkError&) {
                        Log::Error(kLogTag, "Unable to show notification with UILocalNotification");
                      });
  }
}

// Absent without a text, and for one that is no JSON object or array.
Platform::Value KRVLocalNotificationHandler::ParseUserInfo(const Request& request) {
  if (!request.userInfo) return {};
  Platform::Value parsed;
  Velmora::TrySwallow([&] {
    parsed = Platform::Host::Current()->jsonSerialization->Parse(*request.userInfo, nullptr);
  });
  if (parsed.IsAbsent()) {
    Log::Debug(kLogTag, "ignoring invalid userInfo json for notification (id: %s)",
               request.identifier.value_or("").c_str());
  }
  return parsed;
}

void KRVLocalNotificationHandler::AddNotificationRequest(const Request& request,
                                                         const Platform::Value& userInfo) {
  const auto center = Platform::Host::Current()->userNotificationCenter;
  Platform::NotificationRequest added;
  added.identifier = request.identifier;
  added.content.body = request.content;
  if (request.sound && !request.sound->empty()) added.content.sound = request.sound;
  added.content.userInfo = userInfo;
  if (request.HasFireDate()) {
    added.trigger = Platform::CalendarTrigger{center->CalendarComponents(request.fireDate)};
  } else {
    added.trigger = Platform::TimeIntervalTrigger{request.delay};
  }
  center->Add(added);
}

void KRVLocalNotificationHandler::ScheduleLocalNotification(const Request& request,
                                                            const Platform::Value& userInfo) {
  const auto notifications = Platform::Host::Current()->localNotifications;
  Platform::LocalNotification notification;
  notification.alertBody = request.content;
  notification.soundName = request.sound;
  notification.userInfo = userInfo;
  notification.fireDate =
      request.HasFireDate()
          ? Platform::FireDate{Platform::FireDate::Kind::Since1970, request.fireDate}
          : Platform::FireDate{Platform::FireDate::Kind::SinceNow, request.delay};
  if (notifications->KnowsCategory()) notification.category = request.category;
  notifications->Schedule(notification);
}
