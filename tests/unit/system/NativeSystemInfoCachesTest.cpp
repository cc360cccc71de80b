// What NativeSystemInfoService finds out once for the whole process.

#include <locale>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "SystemInfoFixture.h"
#include "support/CountingDevice.h"
#include "support/Guarded.h"
#include "support/ScopedEnvironment.h"

namespace {

using TestSupport::CountingDevice;
using TestSupport::Guarded;
using TestSupport::LogLevel;
using TestSupport::ScopedEnvironment;
using Velmora::CreateNativeSystemInfoService;
using Velmora::NativeSystemInfoService;

using NativeSystemInfoCaches = SystemInfoFixture;

class ServiceWithAnotherLocale final : public NativeSystemInfoService {
 public:
  std::locale GetActiveLocale() const override { return std::locale("C.UTF-8"); }
};

// Every answer that threads get which all ask at once.
std::set<std::string> AnswersOfManyThreads(
    const std::function<std::string(const Velmora::SystemInfoServiceInterface&)>& ask) {
  Guarded<std::set<std::string>> answers;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      const auto service = CreateNativeSystemInfoService();
      const std::string answer = ask(*service);
      answers.With([&](auto& all) { all.insert(answer); });
    });
  }
  for (std::thread& thread : threads) thread.join();
  return answers.Get();
}

TEST_F(NativeSystemInfoCaches, KeepTheFirstNameAndVersionOfTheSystem) {
  host.device->SetSystemName("First OS");
  host.device->SetSystemVersion("1.0");
  EXPECT_EQ(service->GetOperatingSystemName(), "First OS");
  EXPECT_EQ(service->GetOperatingSystemVersion(), "1.0");
  host.device->SetSystemName("Second OS");
  host.device->SetSystemVersion("2.0");
  EXPECT_EQ(service->GetOperatingSystemName(), "First OS");
  EXPECT_EQ(service->GetOperatingSystemVersion(), "1.0");
}

TEST_F(NativeSystemInfoCaches, AreSharedByAllServicesAndOutliveThem) {
  EXPECT_EQ(CreateNativeSystemInfoService()->GetOperatingSystemName(), "Fake OS");
  host.device->SetSystemName("Second OS");
  EXPECT_EQ(CreateNativeSystemInfoService()->GetOperatingSystemName(), "Fake OS");
}

TEST_F(NativeSystemInfoCaches, KeepAnEmptyAnswerToo) {
  host.device->SetSystemName("");
  EXPECT_EQ(service->GetOperatingSystemName(), "");
  host.device->SetSystemName("Late OS");
  EXPECT_EQ(service->GetOperatingSystemName(), "");
}

TEST_F(NativeSystemInfoCaches, TellAnExtensionByItsExecutablePath) {
  host.bundle->SetExecutablePath("/applications/Shop.app/PlugIns/Widget.appex/Widget");
  EXPECT_EQ(service->GetRunMode(), "Extension");
  host.bundle->SetExecutablePath("/applications/Shop.app/Shop");
  EXPECT_EQ(service->GetRunMode(), "Extension");
}

TEST_F(NativeSystemInfoCaches, TellAnApplicationByAnyOtherPath) {
  host.bundle->SetExecutablePath("/applications/Shop.appex");
  EXPECT_EQ(service->GetRunMode(), "Application");
}

TEST_F(NativeSystemInfoCaches, FindTheExtensionMarkAnywhereInThePath) {
  host.bundle->SetExecutablePath(".appex/");
  EXPECT_EQ(service->GetRunMode(), "Extension");
}

TEST_F(NativeSystemInfoCaches, TakeAProgramWithoutAPathForAnApplication) {
  host.bundle->SetExecutablePath("");
  EXPECT_EQ(service->GetRunMode(), "Application");
}

TEST_F(NativeSystemInfoCaches, FormatTheUserAgent) {
  host.device->SetModel("iPhone");
  host.device->SetSystemVersion("12.1");
  host.locale->SetCurrentIdentifier("C.UTF-8");
  EXPECT_EQ(service->GetDefaultUserAgent(),
            "Mozilla/5.0 (iPhone; CPU OS 12_1 like Mac OS X; C.UTF-8)");
}

TEST_F(NativeSystemInfoCaches, KeepTheUserAgentWhenTheLocaleChanges) {
  host.locale->SetCurrentIdentifier("C.UTF-8");
  const std::string first = service->GetDefaultUserAgent();
  host.locale->SetCurrentIdentifier("C");
  host.device->SetModel("Another Phone");
  EXPECT_EQ(service->GetDefaultUserAgent(), first);
}

TEST_F(NativeSystemInfoCaches, HonourAnOverriddenLocaleInTheUserAgent) {
  host.locale->SetCurrentIdentifier("C");
  const auto overriding = std::make_shared<ServiceWithAnotherLocale>();
  EXPECT_THAT(overriding->GetDefaultUserAgent(), testing::EndsWith("; C.UTF-8)"));
}

TEST_F(NativeSystemInfoCaches, AskTheDeviceOnceHoweverManyThreadsAsk) {
  const auto device = std::make_shared<CountingDevice>();
  Platform::Host changed = host.Copy();
  changed.device = device;
  Platform::Host::Install(changed);
  const auto name =
      AnswersOfManyThreads([](const auto& asked) { return asked.GetOperatingSystemName(); });
  EXPECT_EQ(name.size(), 1U);
  EXPECT_EQ(device->Questions(), 1);
  const auto version =
      AnswersOfManyThreads([](const auto& asked) { return asked.GetOperatingSystemVersion(); });
  EXPECT_EQ(version.size(), 1U);
  EXPECT_EQ(device->Questions(), 2);
  const auto userAgent =
      AnswersOfManyThreads([](const auto& asked) { return asked.GetDefaultUserAgent(); });
  EXPECT_EQ(userAgent.size(), 1U);
  EXPECT_EQ(device->Questions(), 4);  // model and version
}

TEST_F(NativeSystemInfoCaches, SurviveADeviceThatFails) {
  FailEveryPort();
  const ScopedEnvironment environment("LC_ALL", "C.UTF-8");
  log.ExpectLine(LogLevel::Error, kTag,
                 "Failed to get valid c++ locale string from iOS Platform. Returning the default "
                 "locale");
  EXPECT_EQ(service->GetOperatingSystemName(), "");
  EXPECT_EQ(service->GetOperatingSystemVersion(), "");
  EXPECT_EQ(service->GetRunMode(), "Application");
  EXPECT_EQ(service->GetDefaultUserAgent(), "Mozilla/5.0 (; CPU OS  like Mac OS X; C.UTF-8)");
}

}  // namespace
