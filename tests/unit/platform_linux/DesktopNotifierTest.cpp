#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <time.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/DesktopLocalNotifications.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/DesktopUserNotificationCenter.h"
#include "platform/linux/OpenSslUuidGenerator.h"
#include "platform/linux/PendingNotifications.h"
#include "platform/linux/UserDirectories.h"
#include "support/FakeNotificationDaemon.h"
#include "support/FakeSystemLog.h"
#include "support/Guarded.h"
#include "support/PrivateBus.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;

using Platform::CalendarTrigger;
using Platform::DateComponents;
using Platform::DesktopLocalNotifications;
using Platform::DesktopNotifier;
using Platform::DesktopUserNotificationCenter;
using Platform::FireDate;
using Platform::NotificationRequest;
using Platform::PendingNotifications;
using Platform::TimeIntervalTrigger;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::FakeNotificationDaemon;
using TestSupport::WaitUntil;

constexpr double kStart = 1'700'000'000;

NotificationRequest Request(const std::optional<std::string>& identifier, const std::string& body,
                            double seconds = 0) {
  NotificationRequest request;
  request.identifier = identifier;
  request.content.body = body;
  request.trigger = TimeIntervalTrigger{seconds};
  return request;
}

int ThreadsNamed(const std::string& name) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string text;
    std::getline(std::ifstream(entry.path() / "comm"), text);
    if (text == name) ++count;
  }
  return count;
}

// A desktop with a bus of its own and a clock that the test sets. Start() is what a new process of
// the program does.
class DesktopNotifications : public testing::Test {
 protected:
  DesktopNotifications() { Start(); }

  void Start() {
    center.reset();
    local.reset();
    notifier.reset();
    notifier = std::make_shared<DesktopNotifier>(
        DesktopNotifier::Settings{.busAddress = bus.Address(),
                                  .folder = folder.PathOf("app"),
                                  .applicationName = [] { return std::string("The App"); },
                                  .now = [this] { return now.load(); },
                                  .activated =
                                      [this](const Platform::Value& userInfo) {
                                        activations.With([&](auto& all) {
                                          all.push_back(userInfo.Description());
                                        });
                                      },
                                  .longestWait = 5ms},
        systemLog);
    center = std::make_unique<DesktopUserNotificationCenter>(notifier, uuids);
    local = std::make_unique<DesktopLocalNotifications>(
        notifier, uuids, DesktopLocalNotifications::Availability::On);
  }

  void StartDaemon(FakeNotificationDaemon::Manner manner = FakeNotificationDaemon::Manner::Shows,
                   bool readsMarkup = false) {
    daemon = std::make_unique<FakeNotificationDaemon>(bus.Address(), manner, readsMarkup);
  }

  // Waits until so many are shown, and gives them.
  std::vector<FakeNotificationDaemon::Shown> Shown(std::size_t count) {
    EXPECT_TRUE(WaitUntil([&] { return daemon->AllShown().size() >= count; }));
    auto shown = daemon->AllShown();
    EXPECT_THAT(shown, SizeIs(count));
    shown.resize(count);
    return shown;
  }

  std::vector<std::string> Bodies(std::size_t count) {
    std::vector<std::string> bodies;
    for (const auto& each : Shown(count)) bodies.push_back(each.body);
    return bodies;
  }

  std::size_t WaitingCount() const {
    return PendingNotifications(folder.PathOf("app")).All().size();
  }

  TestSupport::TemporaryDirectory folder;
  TestSupport::PrivateBus bus;
  std::unique_ptr<FakeNotificationDaemon> daemon;
  std::atomic<double> now{kStart};
  TestSupport::Guarded<std::vector<std::string>> activations;
  const std::shared_ptr<TestSupport::FakeSystemLog> systemLog =
      std::make_shared<TestSupport::FakeSystemLog>();
  const std::shared_ptr<Platform::OpenSslUuidGenerator> uuids =
      std::make_shared<Platform::OpenSslUuidGenerator>();
  std::shared_ptr<DesktopNotifier> notifier;
  std::unique_ptr<DesktopUserNotificationCenter> center;
  std::unique_ptr<DesktopLocalNotifications> local;
};

TEST_F(DesktopNotifications, CostNothingUntilThereAreSome) {
  const int before = ThreadsNamed("QEXNotify");
  center->ResumePending();
  EXPECT_TRUE(center->IsSupported());
  EXPECT_EQ(ThreadsNamed("QEXNotify"), before);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(DesktopNotifications, AreShownAtOnceWithoutADelay) {
  StartDaemon();
  center->Add(Request("id", "Body"));
  const auto shown = Shown(1)[0];
  EXPECT_EQ(shown.application, "The App");
  EXPECT_EQ(shown.summary, "The App");
  EXPECT_EQ(shown.body, "Body");
  EXPECT_EQ(shown.sound, "message-new-instant");
  EXPECT_FALSE(shown.isSilent);
  EXPECT_EQ(shown.desktopEntry, Platform::ProgramName());
  EXPECT_EQ(WaitingCount(), 0U);
}

TEST_F(DesktopNotifications, HaveTheSoundThatIsNamed) {
  StartDaemon();
  NotificationRequest request = Request("id", "Body");
  request.content.sound = "bell";
  center->Add(request);
  EXPECT_EQ(Shown(1)[0].sound, "bell");
}

TEST_F(DesktopNotifications, WaitForTheirInterval) {
  StartDaemon();
  center->Add(Request("later", "Later", 30));
  now = kStart + 29.9;
  center->Add(Request("now", "Now"));
  EXPECT_THAT(Bodies(1), ElementsAre("Now"));
  EXPECT_EQ(WaitingCount(), 1U);
  now = kStart + 30;
  EXPECT_THAT(Bodies(2), ElementsAre("Now", "Later"));
}

TEST_F(DesktopNotifications, WaitForTheirSecondOfTheCalendar) {
  StartDaemon();
  NotificationRequest request = Request("id", "Body");
  request.trigger = CalendarTrigger{center->CalendarComponents(kStart + 3600.7)};
  center->Add(request);
  now = kStart + 3599.9;
  center->Add(Request("now", "Now"));
  EXPECT_THAT(Bodies(1), ElementsAre("Now"));
  now = kStart + 3600;
  EXPECT_THAT(Bodies(2), ElementsAre("Now", "Body"));
}

TEST_F(DesktopNotifications, NeverComeForASecondThatHasPassedOrIsNone) {
  NotificationRequest request = Request("id", "Body");
  for (const auto& components :
       {center->CalendarComponents(kStart - 1), std::optional<DateComponents>()}) {
    center->Add(Request("id", "Replaced", 30));
    request.trigger = CalendarTrigger{components};
    center->Add(request);
    EXPECT_EQ(WaitingCount(), 0U);
  }
  StartDaemon();
  now = kStart + 60;
  center->Add(Request("now", "Now"));
  EXPECT_THAT(Bodies(1), ElementsAre("Now"));
}

TEST_F(DesktopNotifications, ComeInTheSecondThatIsNow) {
  StartDaemon();
  NotificationRequest request = Request("id", "Body");
  now = kStart + 0.9;
  request.trigger = CalendarTrigger{center->CalendarComponents(kStart)};
  center->Add(request);
  EXPECT_THAT(Bodies(1), ElementsAre("Body"));
}

TEST_F(DesktopNotifications, TakeThePlaceOfOneThatWaits) {
  StartDaemon();
  center->Add(Request("id", "First", 10));
  center->Add(Request("id", "Second", 20));
  EXPECT_EQ(WaitingCount(), 1U);
  now = kStart + 20;
  EXPECT_THAT(Bodies(1), ElementsAre("Second"));
}

TEST_F(DesktopNotifications, TakeThePlaceOfOneThatIsShown) {
  StartDaemon();
  center->Add(Request("id", "First"));
  const auto first = Shown(1)[0];
  EXPECT_EQ(first.replaces, 0U);
  center->Add(Request("id", "Second"));
  EXPECT_EQ(Shown(2)[1].replaces, first.id);
  center->Add(Request("other", "Third"));
  EXPECT_EQ(Shown(3)[2].replaces, 0U);
}

TEST_F(DesktopNotifications, StandApartWithoutAnIdentifier) {
  center->Add(Request(std::nullopt, "First", 30));
  center->Add(Request(std::nullopt, "Second", 30));
  center->Add(Request("", "Third", 30));
  EXPECT_EQ(WaitingCount(), 3U);
}

TEST_F(DesktopNotifications, OutliveTheProcess) {
  center->Add(Request("a", "Later", 60));
  center->Add(Request("b", "Overdue", 30));
  Start();
  now = kStart + 45;
  StartDaemon();
  EXPECT_THAT(daemon->AllShown(), IsEmpty());
  center->ResumePending();
  EXPECT_THAT(Bodies(1), ElementsAre("Overdue"));
  now = kStart + 60;
  EXPECT_THAT(Bodies(2), ElementsAre("Overdue", "Later"));
  Start();
  center->ResumePending();
  center->Add(Request("c", "New"));
  EXPECT_THAT(Bodies(3), ElementsAre("Overdue", "Later", "New"));
}

TEST_F(DesktopNotifications, AreShownByOneOfSeveralProcesses) {
  StartDaemon();
  center->Add(Request("id", "Body", 30));
  const auto first = notifier;
  auto firstCenter = std::move(center);
  auto firstLocal = std::move(local);
  Start();
  center->ResumePending();
  now = kStart + 30;
  EXPECT_THAT(Bodies(1), ElementsAre("Body"));
  // Both have seen that it is due once what they show afterwards is there.
  center->Add(Request("second", "Second"));
  EXPECT_TRUE(WaitUntil([this] { return daemon->AllShown().size() >= 2; }));
  firstCenter->Add(Request("third", "Third"));
  EXPECT_THAT(Bodies(3), ElementsAre("Body", "Second", "Third"));
}

TEST_F(DesktopNotifications, StayForTheNextStartWithoutABus) {
  auto other = std::make_shared<DesktopNotifier>(
      DesktopNotifier::Settings{.busAddress = "unix:path=/nowhere/at/all",
                                .folder = folder.PathOf("app"),
                                .applicationName = [] { return std::string("The App"); },
                                .now = [this] { return now.load(); },
                                .activated = nullptr,
                                .longestWait = 5ms},
      systemLog);
  DesktopUserNotificationCenter(other, uuids).Add(Request("id", "Body"));
  EXPECT_TRUE(WaitUntil([this] { return !systemLog->Lines().empty(); }));
  EXPECT_THAT(
      systemLog->TakeLines(),
      ElementsAre("A notification is not shown before the next start: there is no message bus."));
  other.reset();
  StartDaemon();
  center->ResumePending();
  EXPECT_THAT(Bodies(1), ElementsAre("Body"));
}

TEST_F(DesktopNotifications, AreLoggedWhenTheServiceRefusesThem) {
  StartDaemon(FakeNotificationDaemon::Manner::Refuses);
  center->Add(Request("id", "Body"));
  EXPECT_TRUE(WaitUntil([this] { return !systemLog->Lines().empty(); }));
  EXPECT_THAT(systemLog->TakeLines(),
              ElementsAre(testing::AllOf(HasSubstr("A notification was not shown: "),
                                         HasSubstr("refused"))));
  EXPECT_EQ(WaitingCount(), 0U);
}

TEST_F(DesktopNotifications, AreLoggedWhereThereIsNoService) {
  center->Add(Request("id", "Body"));
  EXPECT_TRUE(WaitUntil([this] { return !systemLog->Lines().empty(); }));
  EXPECT_THAT(systemLog->TakeLines(), ElementsAre(HasSubstr("A notification was not shown: ")));
}

TEST_F(DesktopNotifications, LetTheProcessEndWhileTheServiceIsSilent) {
  StartDaemon(FakeNotificationDaemon::Manner::StaysSilent);
  center->Add(Request("id", "Body"));
  EXPECT_TRUE(WaitUntil([this] { return daemon->TimesAsked() == 1; }));
  const auto start = std::chrono::steady_clock::now();
  center.reset();
  local.reset();
  notifier.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

TEST_F(DesktopNotifications, ShowMarkupAsTheTextThatItIs) {
  StartDaemon(FakeNotificationDaemon::Manner::Shows, true);
  center->Add(Request("id", "<b>1 & 2</b>"));
  EXPECT_EQ(Shown(1)[0].body, "&lt;b&gt;1 &amp; 2&lt;/b&gt;");
}

TEST_F(DesktopNotifications, ShowTheTextAsItIsWhereMarkupIsNotRead) {
  StartDaemon();
  center->Add(Request("id", "<b>1 & 2</b>"));
  EXPECT_EQ(Shown(1)[0].body, "<b>1 & 2</b>");
}

TEST_F(DesktopNotifications, TellOfAClick) {
  StartDaemon();
  NotificationRequest request = Request("id", "Body");
  request.content.userInfo = {{"krv_deeplink", "app://here"}};
  center->Add(request);
  const std::uint32_t id = Shown(1)[0].id;
  daemon->Invoke(id + 1, "default");
  daemon->Invoke(id, "other");
  daemon->Invoke(id, "default");
  EXPECT_TRUE(WaitUntil([this] { return !activations.Get().empty(); }));
  EXPECT_THAT(activations.Get(), ElementsAre(HasSubstr("app://here")));
  daemon->Close(id);
  // That it was closed is heard some time after.
  std::size_t count = 1;
  EXPECT_TRUE(WaitUntil([&] {
    center->Add(Request("id", "Another"));
    return Shown(++count).back().replaces == 0U;
  }));
}

TEST_F(DesktopNotifications, RefuseATimeThatIsNone) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_THROW(center->Add(Request("id", "Body", kInfinity)), Platform::DeviceError);
  EXPECT_THROW(center->Add(Request("id", "Body", std::numeric_limits<double>::quiet_NaN())),
               Platform::DeviceError);
  EXPECT_THROW(center->Add(Request("id", "\xFF")), Platform::DeviceError);
  EXPECT_EQ(WaitingCount(), 0U);
}

TEST_F(DesktopNotifications, OfTheLegacyKindCarryTheirCategory) {
  StartDaemon();
  Platform::LocalNotification notification;
  notification.alertBody = "Body";
  notification.category = "news";
  notification.fireDate = {FireDate::Kind::SinceNow, 30};
  local->Schedule(notification);
  EXPECT_EQ(WaitingCount(), 1U);
  now = kStart + 30;
  const auto shown = Shown(1)[0];
  EXPECT_EQ(shown.body, "Body");
  EXPECT_EQ(shown.category, "news");
  EXPECT_TRUE(shown.isSilent);
  notification.soundName = "bell";
  notification.fireDate = {FireDate::Kind::Since1970, kStart};
  local->Schedule(notification);
  EXPECT_EQ(Shown(2)[1].sound, "bell");
  EXPECT_FALSE(Shown(2)[1].isSilent);
}

TEST_F(DesktopNotifications, OfTheLegacyKindHaveASwitchOfTheirOwn) {
  EXPECT_TRUE(local->IsSupported());
  EXPECT_TRUE(local->KnowsCategory());
  EXPECT_FALSE(
      DesktopLocalNotifications(notifier, uuids, DesktopLocalNotifications::Availability::Off)
          .IsSupported());
}

class DesktopCalendar : public DesktopNotifications {
 protected:
  DesktopCalendar() { ::tzset(); }
  ~DesktopCalendar() override { ::unsetenv("TZ"); }

 private:
  const TestSupport::ScopedEnvironment zone_{"TZ", "XYZ-5:30"};
};

TEST_F(DesktopCalendar, IsThatOfTheUsersTimeZone) {
  EXPECT_EQ(center->CalendarComponents(1'709'210'096.9), (DateComponents{2024, 2, 29, 18, 4, 56}));
  EXPECT_EQ(center->CalendarComponents(-0.5), (DateComponents{1970, 1, 1, 5, 29, 59}));
}

TEST_F(DesktopCalendar, DoesNotReachEverywhere) {
  EXPECT_EQ(center->CalendarComponents(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
  EXPECT_EQ(center->CalendarComponents(std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(center->CalendarComponents(-1e300), std::nullopt);
}

TEST(DesktopNotifier, IsSupportedWhereThereIsASessionBus) {
  const TestSupport::TemporaryDirectory folder;
  const auto hasBus = [] {
    return DesktopNotifier(DesktopNotifier::DefaultSettings([] { return std::string(); }),
                           std::make_shared<TestSupport::FakeSystemLog>())
        .HasBus();
  };
  const TestSupport::ScopedEnvironment runtime("XDG_RUNTIME_DIR", folder.Path());
  {
    const TestSupport::ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/x");
    EXPECT_TRUE(hasBus());
  }
  const TestSupport::ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
  EXPECT_FALSE(hasBus());
  folder.WriteFile("bus", "no socket");
  EXPECT_FALSE(hasBus());
}

}  // namespace
