#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/Platform/Date.h"
#include "VelmoraCore/SdkError.h"
#include "bridge/VelmoraCoreBridge.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::RecordingCore;
using Velmora::VelmoraCoreBridge;

class VelmoraCoreBridgeTest : public TestSupport::BridgeFixture {
 protected:
  // Counts how often the migration has asked whether it is needed.
  void CountMigrations() {
    userDefaults->OnRead(
        [this](const std::string& key) { migrations += key == kMigrationTrigger; });
  }

  int migrations = 0;
};

TEST_F(VelmoraCoreBridgeTest, HandsTheServicesAndNoEventHubToTheCore) {
  VelmoraCoreBridge* bridge = VelmoraCoreBridge::GetInstance();
  const auto calls = RecordingCore::Calls();
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].operation, "Create");
  EXPECT_EQ(calls[0].services.lock(), bridge->GetPlatformServices());
  EXPECT_EQ(calls[0].eventHub, nullptr);
  EXPECT_EQ(bridge->GetCore(), RecordingCore::LastCreated());
  EXPECT_NE(bridge->GetPlatformServices()->GetCryptoService(), nullptr);
}

TEST_F(VelmoraCoreBridgeTest, MakesNothingOnTheSecondCall) {
  CountMigrations();
  VelmoraCoreBridge* bridge = VelmoraCoreBridge::GetInstance();
  const auto core = bridge->GetCore();
  const auto services = bridge->GetPlatformServices();
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(VelmoraCoreBridge::GetInstance(), bridge);
    EXPECT_EQ(bridge->GetCore(), core);
    EXPECT_EQ(GetCore(), core);
    EXPECT_EQ(bridge->GetPlatformServices(), services);
  }
  EXPECT_THAT(RecordingCore::Operations(), ElementsAre("Create"));
  EXPECT_EQ(migrations, 1);
}

TEST_F(VelmoraCoreBridgeTest, MigratesAfterTheCoreWasMade) {
  CountMigrations();
  int migrationsBeforeTheCore = -1;
  RecordingCore::OnCreate([&] { migrationsBeforeTheCore = migrations; });
  VelmoraCoreBridge::GetInstance();
  EXPECT_EQ(migrationsBeforeTheCore, 0);
  EXPECT_EQ(migrations, 1);
}

TEST_F(VelmoraCoreBridgeTest, MigratesOnTheCallingThread) {
  std::vector<std::thread::id> threads;
  userDefaults->OnRead([&](const std::string&) { threads.push_back(std::this_thread::get_id()); });
  VelmoraCoreBridge::GetInstance();
  EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id()));
}

TEST_F(VelmoraCoreBridgeTest, MovesLegacyDataBeforeTheFirstCallReturns) {
  using TestSupport::LogLevel;
  host.userDefaults->Standard()->SetObject(
      kMigrationTrigger, Platform::Value::FromObject(std::make_shared<Platform::Date>(1000.0)));
  log.AllowLines(LogLevel::Debug, "Configuration", testing::_);
  const auto store =
      VelmoraCoreBridge::GetInstance()->GetPlatformServices()->GetLocalStorageService();
  EXPECT_TRUE(host.userDefaults->Standard()->ObjectForKey(kMigrationTrigger).IsAbsent());
  EXPECT_EQ(store->GetDataStore("KorvoMobile_Lifecycle")->GetLong("InstallDate", 0), 1000);
}

TEST_F(VelmoraCoreBridgeTest, IsVisibleToTheMigration) {
  VelmoraCoreBridge* seen = nullptr;
  userDefaults->OnRead([&](const std::string&) { seen = VelmoraCoreBridge::GetInstance(); });
  VelmoraCoreBridge* bridge = VelmoraCoreBridge::GetInstance();
  EXPECT_EQ(seen, bridge);
  EXPECT_EQ(CountOf("Create"), 1);
}

TEST_F(VelmoraCoreBridgeTest, LetsAFailedMigrationThroughAndKeepsTheBridge) {
  userDefaults->OnRead([](const std::string&) { throw std::runtime_error("device gone"); });
  EXPECT_THROW(VelmoraCoreBridge::GetInstance(), std::runtime_error);

  CountMigrations();
  EXPECT_EQ(VelmoraCoreBridge::GetInstance()->GetCore(), RecordingCore::LastCreated());
  EXPECT_EQ(CountOf("Create"), 1);
  EXPECT_EQ(migrations, 0);
}

TEST_F(VelmoraCoreBridgeTest, FreesWhatWasMadeWhenTheCoreFailsAndTriesAgain) {
  CountMigrations();
  RecordingCore::ThrowFrom("Create", RecordingCore::Thrown::SdkError);
  EXPECT_THROW(VelmoraCoreBridge::GetInstance(), Velmora::SdkError);
  EXPECT_TRUE(RecordingCore::TakeCalls().at(0).services.expired());
  EXPECT_EQ(migrations, 0);
  EXPECT_THROW(GetCore(), Velmora::SdkError);
  EXPECT_TRUE(RecordingCore::TakeCalls().at(0).services.expired());

  RecordingCore::ThrowFromNothing();
  EXPECT_NE(GetCore(), nullptr);
  EXPECT_EQ(migrations, 1);
}

TEST_F(VelmoraCoreBridgeTest, ResetWithoutABridgeDoesNothing) {
  CountMigrations();
  VelmoraCoreBridge::ResetInstance();
  VelmoraCoreBridge::ResetInstance();
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
  EXPECT_EQ(migrations, 0);
}

TEST_F(VelmoraCoreBridgeTest, ResetDisposesTheCoreOnce) {
  const auto core = GetCore();
  VelmoraCoreBridge::ResetInstance();
  VelmoraCoreBridge::ResetInstance();
  const auto calls = RecordingCore::Calls();
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[1].operation, "Dispose");
  EXPECT_EQ(calls[1].core, core.get());
}

TEST_F(VelmoraCoreBridgeTest, OldCoreAndServicesLiveOnAfterAReset) {
  VelmoraCoreBridge* bridge = VelmoraCoreBridge::GetInstance();
  const std::weak_ptr<Velmora::Core> core = bridge->GetCore();
  const std::weak_ptr<Velmora::PlatformServicesInterface> services = bridge->GetPlatformServices();
  VelmoraCoreBridge::ResetInstance();
  EXPECT_FALSE(core.expired());
  EXPECT_FALSE(services.expired());
  EXPECT_EQ(bridge->GetCore(), core.lock());
  EXPECT_EQ(bridge->GetPlatformServices(), services.lock());
}

TEST_F(VelmoraCoreBridgeTest, BuildsEverythingAnewAfterAReset) {
  CountMigrations();
  VelmoraCoreBridge* oldBridge = VelmoraCoreBridge::GetInstance();
  VelmoraCoreBridge::ResetInstance();
  VelmoraCoreBridge* newBridge = VelmoraCoreBridge::GetInstance();
  EXPECT_NE(newBridge, oldBridge);
  EXPECT_NE(newBridge->GetCore(), oldBridge->GetCore());
  EXPECT_NE(newBridge->GetPlatformServices(), oldBridge->GetPlatformServices());
  EXPECT_NE(newBridge->GetPlatformServices()->GetCryptoService(),
            oldBridge->GetPlatformServices()->GetCryptoService());
  EXPECT_EQ(GetCore(), newBridge->GetCore());
  EXPECT_THAT(RecordingCore::Operations(), ElementsAre("Create", "Dispose", "Create"));
  EXPECT_EQ(migrations, 2);
}

TEST_F(VelmoraCoreBridgeTest, MayBeAskedOnTwoThreadsOnceItIsThere) {
  const auto core = GetCore();
  bool same[2] = {true, true};
  const auto ask = [&](bool& result) {
    for (int i = 0; i < 10'000; ++i) result &= GetCore() == core;
  };
  {
    const std::jthread other([&] { ask(same[0]); });
    ask(same[1]);
  }
  EXPECT_TRUE(same[0]);
  EXPECT_TRUE(same[1]);
}

}  // namespace
