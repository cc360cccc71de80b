#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/DesktopLocalNotifications.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/DesktopUserNotificationCenter.h"
#include "platform/linux/OpenSslUuidGenerator.h"
#include "platform/linux/PendingNotifications.h"
#include "support/FakeNotifications.h"
#include "support/FakeSystemLog.h"
#include "support/PrivateBus.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::NotificationRequest;
using Platform::TimeIntervalTrigger;

// Each subject has both ports and can count what waits.
class DesktopSubject {
 public:
  Platform::UserNotificationCenter& Center() { return center_; }
  Platform::LocalNotifications& Local() { return local_; }
  std::size_t WaitingCount() const { return Platform::PendingNotifications(Folder()).All().size(); }

 private:
  std::string Folder() const { return folder_.PathOf("app"); }

  TestSupport::TemporaryDirectory folder_;
  TestSupport::PrivateBus bus_;
  std::shared_ptr<Platform::OpenSslUuidGenerator> uuids_ =
      std::make_shared<Platform::OpenSslUuidGenerator>();
  std::shared_ptr<Platform::DesktopNotifier> notifier_ =
      std::make_shared<Platform::DesktopNotifier>(
          Platform::DesktopNotifier::Settings{.busAddress = bus_.Address(),
                                              .folder = Folder(),
                                              .applicationName = [] { return std::string("App"); },
                                              .now = [] { return 1e9; },
                                              .activated = nullptr},
          std::make_shared<TestSupport::FakeSystemLog>());
  Platform::DesktopUserNotificationCenter center_{notifier_, uuids_};
  Platform::DesktopLocalNotifications local_{notifier_, uuids_,
                                             Platform::DesktopLocalNotifications::Availability::On};
};

class FakeSubject {
 public:
  Platform::UserNotificationCenter& Center() { return center_; }
  Platform::LocalNotifications& Local() { return local_; }
  std::size_t WaitingCount() const {
    return center_.Requests().size() + local_.Notifications().size();
  }

 private:
  TestSupport::FakeUserNotificationCenter center_;
  TestSupport::FakeLocalNotifications local_;
};

template <class Subject>
class NotificationsContractTest : public testing::Test {
 protected:
  void Add(const std::optional<std::string>& identifier, double seconds) {
    NotificationRequest request;
    request.identifier = identifier;
    request.content.body = "Body";
    request.trigger = TimeIntervalTrigger{seconds};
    subject_.Center().Add(request);
  }

  Subject subject_;
};

using Subjects = testing::Types<DesktopSubject, FakeSubject>;
TYPED_TEST_SUITE(NotificationsContractTest, Subjects);

TYPED_TEST(NotificationsContractTest, IsSupported) {
  EXPECT_TRUE(this->subject_.Center().IsSupported());
  EXPECT_TRUE(this->subject_.Local().IsSupported());
}

TYPED_TEST(NotificationsContractTest, KeepsARequestUntilItIsDue) {
  this->Add("a", 60);
  this->Add("b", 60);
  EXPECT_EQ(this->subject_.WaitingCount(), 2U);
}

TYPED_TEST(NotificationsContractTest, ReplacesARequestOfTheSameIdentifier) {
  this->Add("a", 60);
  this->Add("a", 90);
  EXPECT_EQ(this->subject_.WaitingCount(), 1U);
}

TYPED_TEST(NotificationsContractTest, KeepsRequestsWithoutAnIdentifierApart) {
  this->Add(std::nullopt, 60);
  this->Add(std::nullopt, 60);
  EXPECT_EQ(this->subject_.WaitingCount(), 2U);
}

TYPED_TEST(NotificationsContractTest, KeepsEveryLegacyNotification) {
  Platform::LocalNotification notification;
  notification.alertBody = "Body";
  notification.fireDate = {Platform::FireDate::Kind::SinceNow, 60};
  this->subject_.Local().Schedule(notification);
  this->subject_.Local().Schedule(notification);
  EXPECT_EQ(this->subject_.WaitingCount(), 2U);
}

TYPED_TEST(NotificationsContractTest, KnowsTheCalendar) {
  const auto components = this->subject_.Center().CalendarComponents(1'709'210'096);
  ASSERT_TRUE(components.has_value());
  EXPECT_EQ(components->year, 2024);
  EXPECT_EQ(components->second, 56);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(this->subject_.Center().CalendarComponents(nan), std::nullopt);
  EXPECT_EQ(this->subject_.Center().CalendarComponents(-1e300), std::nullopt);
}

TYPED_TEST(NotificationsContractTest, HasNothingToResumeAtFirst) {
  this->subject_.Center().ResumePending();
  EXPECT_EQ(this->subject_.WaitingCount(), 0U);
}

}  // namespace
