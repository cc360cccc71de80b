#include <chrono>
#include <limits>
#include <string>

#include <gmock/gmock.h>

#include "UiFixture.h"
#include "services/ui/KRVLocalNotificationHandler.h"

namespace {

using namespace std::chrono_literals;

using Platform::CalendarTrigger;
using Platform::DateComponents;
using Platform::FireDate;
using Platform::TimeIntervalTrigger;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::LogLevel;

constexpr const char* kTag = "LocalNotificationHandler";

class LocalNotification : public TestSupport::UiFixture {
 protected:
  struct Given {
    std::string identifier = "id";
    std::string content = "Body";
    std::string sound = "";
    std::string category = "";
    std::chrono::seconds delay{0};
    std::string deepLink = "";
    std::chrono::seconds fireDate{0};
    std::string userInfo = "";
  };

  void Schedule(const Given& given) {
    service->ShowLocalNotification(given.identifier, given.content, given.sound, given.category,
                                   given.delay, given.deepLink, given.fireDate, given.userInfo);
    host.mainQueue->RunAll();
  }

  Platform::NotificationRequest Request() {
    const auto requests = host.userNotificationCenter->Requests();
    EXPECT_THAT(requests, SizeIs(1));
    return requests.empty() ? Platform::NotificationRequest() : requests.front();
  }

  Platform::LocalNotification Legacy() {
    const auto notifications = host.localNotifications->Notifications();
    EXPECT_THAT(notifications, SizeIs(1));
    return notifications.empty() ? Platform::LocalNotification() : notifications.front();
  }
};

TEST_F(LocalNotification, IsScheduledByTheMainQueue) {
  service->ShowLocalNotification("id", "Body", "", "", 30s, "", 0s, "");
  EXPECT_THAT(host.userNotificationCenter->Requests(), IsEmpty());
  host.mainQueue->RunAll();
  EXPECT_EQ(Request().identifier, "id");
  EXPECT_EQ(Request().content.body, "Body");
  EXPECT_TRUE(Request().content.userInfo.IsAbsent());
}

TEST_F(LocalNotification, ComesAfterTheDelayWithoutAFireDate) {
  Schedule({.delay = 30s});
  EXPECT_EQ(std::get<TimeIntervalTrigger>(Request().trigger).seconds, 30);
}

TEST_F(LocalNotification, ComesAtTheFireDateWhateverTheDelay) {
  Schedule({.delay = 30s, .fireDate = 1'709'210'096s});
  EXPECT_EQ(std::get<CalendarTrigger>(Request().trigger),
            (CalendarTrigger{DateComponents{2024, 2, 29, 12, 34, 56}}));
}

TEST_F(LocalNotification, TakesAnyNumberButZeroForAFireDate) {
  Schedule({.fireDate = -1s});
  EXPECT_EQ(std::get<CalendarTrigger>(Request().trigger),
            (CalendarTrigger{DateComponents{1969, 12, 31, 23, 59, 59}}));
}

TEST_F(LocalNotification, TakesNotANumberForAFireDate) {
  KRVLocalNotificationHandler::scheduleWithIdentifier(
      "id", "Body", std::nullopt, std::nullopt, 30, std::nullopt,
      std::numeric_limits<double>::quiet_NaN(), std::nullopt);
  host.mainQueue->RunAll();
  EXPECT_EQ(std::get<CalendarTrigger>(Request().trigger), CalendarTrigger{});
}

TEST_F(LocalNotification, HasTheDefaultSoundWithoutAName) {
  Schedule({.sound = ""});
  EXPECT_EQ(Request().content.sound, std::nullopt);
}

TEST_F(LocalNotification, HasTheSoundThatIsNamed) {
  Schedule({.sound = "bell"});
  EXPECT_EQ(Request().content.sound, "bell");
}

TEST_F(LocalNotification, CarriesTheUserInformation) {
  Schedule({.userInfo = R"({"a":[1,"b"]})"});
  EXPECT_EQ(Request().content.userInfo, (Platform::Value{{"a", Platform::Value::Array({1, "b"})}}));
}

TEST_F(LocalNotification, DoesWithoutUserInformationThatIsNoJson) {
  Schedule({.userInfo = "{"});
  log.ExpectLine(LogLevel::Debug, kTag, "ignoring invalid userInfo json for notification (id: id)");
  EXPECT_EQ(Request().identifier, "id");
  EXPECT_TRUE(Request().content.userInfo.IsAbsent());
}

TEST_F(LocalNotification, DoesWithoutUserInformationThatNestsTooDeep) {
  Schedule({.identifier = "", .userInfo = std::string(100'000, '[')});
  log.ExpectLine(LogLevel::Debug, kTag, "ignoring invalid userInfo json for notification (id: )");
  EXPECT_EQ(Request().identifier, std::nullopt);
}

TEST_F(LocalNotification, ReplacesAnEarlierOneOfItsIdentifier) {
  Schedule({.content = "First"});
  Schedule({.content = "Second"});
  EXPECT_EQ(Request().content.body, "Second");
}

TEST_F(LocalNotification, IsLoggedWhenTheCentreFails) {
  host.userNotificationCenter->SetFails(true);
  Schedule({});
  log.ExpectLine(LogLevel::Error, kTag,
                 "Unable to show notification with UNNotificationRequest std.exception The device "
                 "failed.");
}

TEST_F(LocalNotification, IsNothingWhereTheDeviceKnowsNone) {
  host.userNotificationCenter->SetSupported(false);
  host.localNotifications->SetSupported(false);
  EXPECT_FALSE(KRVLocalNotificationHandler::isUNUserNotificationSupported());
  EXPECT_FALSE(KRVLocalNotificationHandler::isUILocalNotificationSupported());
  Schedule({});
  EXPECT_THAT(host.userNotificationCenter->Requests(), IsEmpty());
  EXPECT_THAT(host.localNotifications->Notifications(), IsEmpty());
}

TEST_F(LocalNotification, TakesTheModernWayWhereBothAreKnown) {
  Schedule({});
  EXPECT_THAT(host.userNotificationCenter->Requests(), SizeIs(1));
  EXPECT_THAT(host.localNotifications->Notifications(), IsEmpty());
}

class LegacyLocalNotification : public LocalNotification {
 protected:
  LegacyLocalNotification() { host.userNotificationCenter->SetSupported(false); }
};

TEST_F(LegacyLocalNotification, CarriesEverything) {
  Schedule({.sound = "bell", .category = "news", .delay = 30s, .userInfo = R"({"a":1})"});
  const Platform::LocalNotification notification = Legacy();
  EXPECT_EQ(notification.alertBody, "Body");
  EXPECT_EQ(notification.soundName, "bell");
  EXPECT_EQ(notification.category, "news");
  EXPECT_EQ(notification.userInfo, (Platform::Value{{"a", 1}}));
  EXPECT_EQ(notification.fireDate, (FireDate{FireDate::Kind::SinceNow, 30}));
}

TEST_F(LegacyLocalNotification, ComesAtTheFireDateWhateverTheDelay) {
  Schedule({.delay = 30s, .fireDate = 1'709'210'096s});
  EXPECT_EQ(Legacy().fireDate, (FireDate{FireDate::Kind::Since1970, 1'709'210'096}));
  EXPECT_EQ(Legacy().soundName, std::nullopt);
}

TEST_F(LegacyLocalNotification, HasNoCategoryWhereThereAreNone) {
  host.localNotifications->SetKnowsCategory(false);
  Schedule({.category = "news"});
  EXPECT_EQ(Legacy().category, std::nullopt);
}

TEST_F(LegacyLocalNotification, IsLoggedWhenTheDeviceFails) {
  host.localNotifications->SetFails(true);
  Schedule({});
  log.ExpectLine(LogLevel::Error, kTag, "Unable to show notification with UILocalNotification");
}

}  // namespace
