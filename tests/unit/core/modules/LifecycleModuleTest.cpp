#include <memory>
#include <string>

#include "unit/core/hub/CoreFixture.h"

namespace {

using testing::HasSubstr;
using TestSupport::LogLevel;

class LifecycleModuleTest : public CoreFixture {};

TEST_F(LifecycleModuleTest, TellsOfTheDeviceAndWhatTheAppGave) {
  StartCore();
  core->LifecycleStart({{"from", "widget"}, {"runMode", "mine"}});
  Finish();
  const std::string told = DataOf(Heard(EventTypes::kLifecycle, EventSources::kResponse));
  EXPECT_THAT(told, HasSubstr("phase:\"start\""));
  EXPECT_THAT(told, HasSubstr("from:\"widget\""));
  EXPECT_THAT(told, HasSubstr("runMode:\"mine\"")) << "the app's word wins";
  EXPECT_THAT(told, HasSubstr("appName:\"" + services->systemInfo->GetApplicationName() + '"'));
  EXPECT_THAT(told, HasSubstr("device:\"" + services->systemInfo->GetDeviceName() + '"'));
}

TEST_F(LifecycleModuleTest, PublishesItsPhase) {
  StartCore();
  core->LifecycleStart({});
  Settle();
  EXPECT_THAT(StateOf("lifecycle"), HasSubstr(R"("phase":"start")"));
  core->LifecyclePause();
  Settle();
  EXPECT_EQ(StateOf("lifecycle"), R"({"phase":"pause"})");
}

TEST_F(LifecycleModuleTest, APauseWithoutAStartIsIgnored) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Lifecycle", "paused without having been started");
  core->LifecyclePause();
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kLifecycle, EventSources::kResponse), 0U);
}

TEST_F(LifecycleModuleTest, ASecondStartRenewsTheContextData) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Lifecycle",
                 "started while running; only the context data are renewed");
  core->LifecycleStart({{"a", "1"}});
  core->LifecycleStart({{"b", "2"}});
  Settle();
  EXPECT_THAT(StateOf("lifecycle"), HasSubstr(R"("b":"2")"));
  EXPECT_THAT(StateOf("lifecycle"), testing::Not(HasSubstr(R"("a":"1")")));
}

TEST_F(LifecycleModuleTest, WorksWithoutSystemInformation) {
  services->systemInfo = nullptr;
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Lifecycle",
                 "there is no system information service; context data tell nothing of the device");
  core->LifecycleStart({{"a", "1"}});
  Settle();
  EXPECT_EQ(StateOf("lifecycle"), R"({"contextdata":{"a":"1"},"phase":"start"})");
}

TEST_F(LifecycleModuleTest, ARequestFromOutsideMayBeAnything) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Lifecycle",
                 "the request \"odd\" asks for nothing that is known");
  EXPECT_EQ(Dispatch(NewEvent("odd", EventTypes::kLifecycle, EventSources::kRequest)), "");
  Settle();
}

}  // namespace
