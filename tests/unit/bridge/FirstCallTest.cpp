// What the first use of the SDK does, with services that can be watched and made to fail: this
// program has a NativeServiceFactories of its own.

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "PublicOperations.h"
#include "QEXCore_iOS/GetCore.h"
#include "TrackedServices.h"
#include "bridge/ServiceFactories.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::PublicOperation;
using TestSupport::PublicOperations;
using TestSupport::RecordingCore;
using TestSupport::TrackedServices;

TrackedServices& Tracked() {
  // Never destroyed: abandoned bridges keep their services until the process ends.
  static auto& tracked = *new TrackedServices;
  return tracked;
}

}  // namespace

Velmora::ServiceFactories Velmora::NativeServiceFactories() { return Tracked().Factories(); }

namespace {

class FirstCallFixture : public TestSupport::BridgeFixture {
 protected:
  FirstCallFixture() {
    Tracked().FailAt("");
    Tracked().TakeEvents();
    RecordingCore::OnCreate([] { Tracked().Events().push_back("create core"); });
    userDefaults->OnRead([](const std::string& key) {
      if (key == kMigrationTrigger) Tracked().Events().push_back("migrate");
    });
  }
};

class FirstCall : public FirstCallFixture, public testing::WithParamInterface<PublicOperation> {};

TEST_P(FirstCall, MakesTheServicesThenTheCoreThenMigrates) {
  GetParam().call();
  EXPECT_THAT(Tracked().TakeEvents(),
              ElementsAre("make crypto", "make systemInfo", "make database(systemInfo)",
                          "make encoding", "make fileSystem", "make jsonUtility",
                          "make localStorage", "make logging", "make network(systemInfo)",
                          "make remoteFileManager(network, fileSystem, systemInfo)", "make ui",
                          "make url", "make compressedFile", "create core", "migrate"));
  EXPECT_THAT(RecordingCore::Operations(), ElementsAre("Create", GetParam().coreOperation));

  GetParam().call();
  EXPECT_THAT(Tracked().TakeEvents(), IsEmpty());
  EXPECT_THAT(RecordingCore::Operations(),
              ElementsAre("Create", GetParam().coreOperation, GetParam().coreOperation));
}

TEST_P(FirstCall, ReachesTheHostAsALogLineWhenAServiceCannotBeMade) {
  Tracked().FailAt("network");
  GetParam().call();
  log.ExpectLine(LogLevel::Error, "QEXCore", GetParam().name + " failed: no network");
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());

  Tracked().FailAt("");
  GetParam().call();
  EXPECT_THAT(RecordingCore::Operations(), ElementsAre("Create", GetParam().coreOperation));
}

INSTANTIATE_TEST_SUITE_P(OfEveryOperation, FirstCall, testing::ValuesIn(PublicOperations()),
                         [](const auto& operation) { return operation.param.name; });

class FailingService : public FirstCallFixture, public testing::WithParamInterface<std::string> {};

TEST_P(FailingService, LeavesNothingBehindAndTheNextCallTriesAgain) {
  Tracked().FailAt(GetParam());
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_THROW(GetCore(), std::runtime_error);
    int alive = 0;
    for (const std::string& event : Tracked().TakeEvents()) {
      alive += event.starts_with("make ");
      alive -= event.starts_with("release ");
    }
    EXPECT_EQ(alive, 1) << "the failing service alone was not released";
    EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
  }

  Tracked().FailAt("");
  const auto core = GetCore();
  EXPECT_EQ(core, RecordingCore::LastCreated());
  const auto events = Tracked().TakeEvents();
  ASSERT_EQ(events.size(), TrackedServices::Names().size() + 2);
  EXPECT_EQ(events[events.size() - 2], "create core");
  EXPECT_EQ(events.back(), "migrate");
}

INSTANTIATE_TEST_SUITE_P(EveryStep, FailingService, testing::ValuesIn(TrackedServices::Names()),
                         [](const auto& step) { return step.param; });

TEST_F(FirstCallFixture, ReleasesEveryServiceWhenTheCoreCannotBeMade) {
  RecordingCore::ThrowFrom("Create", RecordingCore::Thrown::RuntimeError);
  EXPECT_THROW(GetCore(), std::runtime_error);
  const auto events = Tracked().TakeEvents();
  ASSERT_EQ(events.size(), 2 * TrackedServices::Names().size());
  EXPECT_EQ(events.back(), "release crypto");
}

TEST_F(FirstCallFixture, OperationsThatDoWithoutTheCoreMakeNothing) {
  EXPECT_EQ(QEXCore::extensionVersion(), "1.0.0");
  QEXCore::setLogLevel(QEXMobileLogLevel::trace);
  QEXCore::setAppGroup(std::nullopt);
  EXPECT_THAT(Tracked().TakeEvents(), IsEmpty());
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
}

TEST_F(FirstCallFixture, DisposingTheRegistryDisposesTheRemoteFileManager) {
  const auto services = Velmora::VelmoraCoreBridge::GetInstance()->GetPlatformServices();
  Tracked().TakeEvents();
  EXPECT_TRUE(services->Dispose(std::chrono::milliseconds(250)));
  EXPECT_FALSE(services->Dispose(std::chrono::milliseconds(50)));
  EXPECT_THAT(Tracked().TakeEvents(), ElementsAre("dispose 250", "dispose 50"));
}

TEST_F(FirstCallFixture, AResetReleasesNoService) {
  Velmora::VelmoraCoreBridge::GetInstance();
  Tracked().TakeEvents();
  Velmora::VelmoraCoreBridge::ResetInstance();
  EXPECT_THAT(Tracked().TakeEvents(), IsEmpty());
}

}  // namespace
