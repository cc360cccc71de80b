#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TrackedServices.h"
#include "bridge/PlatformServices.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::TrackedServices;
using Velmora::PlatformServices;

template <class Service>
bool SameOwner(const std::shared_ptr<Service>& left, const std::shared_ptr<Service>& right) {
  return !left.owner_before(right) && !right.owner_before(left);
}

TEST(PlatformServices, MakesEveryServiceOnceAndWhatIsHandedOnFirst) {
  TrackedServices tracked;
  const PlatformServices services(tracked.Factories());
  EXPECT_THAT(tracked.TakeEvents(),
              ElementsAre("make crypto", "make systemInfo", "make database(systemInfo)",
                          "make encoding", "make fileSystem", "make jsonUtility",
                          "make localStorage", "make logging", "make network(systemInfo)",
                          "make remoteFileManager(network, fileSystem, systemInfo)", "make ui",
                          "make url", "make compressedFile"));
}

TEST(PlatformServices, ReleasesItsServicesInReverseOrderOfItsMembers) {
  TrackedServices tracked;
  auto services = std::make_unique<PlatformServices>(tracked.Factories());
  tracked.TakeEvents();
  services.reset();
  EXPECT_THAT(
      tracked.TakeEvents(),
      ElementsAre("release compressedFile", "release url", "release ui", "release systemInfo",
                  "release remoteFileManager", "release network", "release logging",
                  "release localStorage", "release jsonUtility", "release fileSystem",
                  "release encoding", "release database", "release crypto"));
}

class FailingFactory : public testing::TestWithParam<std::string> {};

TEST_P(FailingFactory, ReleasesWhatWasMadeNewestFirstAndThrowsOn) {
  TrackedServices tracked;
  tracked.FailAt(GetParam());
  EXPECT_THROW(PlatformServices{tracked.Factories()}, std::runtime_error);

  const auto& names = TrackedServices::Names();
  const auto failing = std::find(names.begin(), names.end(), GetParam());
  std::vector<std::string> released;
  for (const std::string& event : tracked.TakeEvents()) {
    if (event.starts_with("release ")) released.push_back(event.substr(8));
  }
  std::vector<std::string> expected(names.begin(), failing);
  std::reverse(expected.begin(), expected.end());
  EXPECT_EQ(released, expected);
}

INSTANTIATE_TEST_SUITE_P(EveryStep, FailingFactory, testing::ValuesIn(TrackedServices::Names()),
                         [](const auto& step) { return step.param; });

TEST(PlatformServices, DisposePassesTheTimeoutOnAndReturnsWhatTheRemoteFileManagerSays) {
  TrackedServices tracked;
  PlatformServices services(tracked.Factories());
  tracked.TakeEvents();
  EXPECT_TRUE(services.Dispose(milliseconds(100)));
  EXPECT_FALSE(services.Dispose(milliseconds(99)));
  EXPECT_FALSE(services.Dispose(milliseconds(-1)));
  EXPECT_THAT(tracked.TakeEvents(), ElementsAre("dispose 100", "dispose 99", "dispose -1"));
}

TEST(PlatformServices, DisposeIsTrueWithoutARemoteFileManager) {
  PlatformServices services(Velmora::ServiceFactories{});
  EXPECT_TRUE(services.Dispose(milliseconds(0)));
}

TEST(PlatformServices, GettersHandOutOneMoreReferenceToTheSameService) {
  TrackedServices tracked;
  const PlatformServices services(tracked.Factories());
  tracked.TakeEvents();
  const auto first = services.GetCryptoService();
  EXPECT_EQ(first.use_count(), 2);
  const auto second = services.GetCryptoService();
  EXPECT_EQ(first.use_count(), 3);
  EXPECT_TRUE(SameOwner(first, second));
  EXPECT_THAT(tracked.TakeEvents(), IsEmpty());
}

TEST(PlatformServices, EachGetterHandsOutWhatItsFactoryMade) {
  TrackedServices tracked;
  auto factories = tracked.Factories();
  std::vector<std::weak_ptr<const void>> made;
  const auto remember = [&made](auto& factory) {
    factory = [&made, inner = factory](const auto&... dependencies) {
      auto service = inner(dependencies...);
      made.push_back(service);
      return service;
    };
  };
  remember(factories.crypto);
  remember(factories.systemInfo);
  remember(factories.database);
  remember(factories.encoding);
  remember(factories.fileSystem);
  remember(factories.jsonUtility);
  remember(factories.localStorage);
  remember(factories.logging);
  remember(factories.network);
  remember(factories.remoteFileManager);
  remember(factories.ui);
  remember(factories.url);
  remember(factories.compressedFile);
  const PlatformServices services(factories);

  const std::vector<std::shared_ptr<const void>> handedOut = {
      services.GetCryptoService(),
      services.GetSystemInfoService(),
      services.GetDatabaseService(),
      services.GetEncodingService(),
      services.GetFileSystemService(),
      services.GetJsonUtilityService(),
      services.GetLocalStorageService(),
      services.GetLoggingService(),
      services.GetNetworkService(),
      services.GetRemoteFileManagerService(),
      services.GetUIService(),
      services.GetURLService(),
      services.GetCompressedFileService()};
  ASSERT_EQ(made.size(), handedOut.size());
  for (std::size_t i = 0; i < made.size(); ++i) {
    EXPECT_FALSE(made[i].owner_before(handedOut[i])) << TrackedServices::Names()[i];
    EXPECT_FALSE(handedOut[i].owner_before(made[i])) << TrackedServices::Names()[i];
  }
}

TEST(PlatformServices, AServiceLivesOnWithWhoeverAskedForIt) {
  TrackedServices tracked;
  auto services = std::make_unique<PlatformServices>(tracked.Factories());
  auto url = services->GetURLService();
  services.reset();
  EXPECT_THAT(tracked.TakeEvents(), testing::Not(testing::Contains("release url")));
  url.reset();
  EXPECT_THAT(tracked.TakeEvents(), ElementsAre("release url"));
}

TEST(PlatformServices, MayBeAskedOnTwoThreadsAtOnce) {
  TrackedServices tracked;
  const PlatformServices services(tracked.Factories());
  const auto expected = services.GetNetworkService();
  bool same[2] = {true, true};
  const auto ask = [&](bool& result) {
    for (int i = 0; i < 10'000; ++i) result &= SameOwner(services.GetNetworkService(), expected);
  };
  {
    const std::jthread other([&] { ask(same[0]); });
    ask(same[1]);
  }
  EXPECT_TRUE(same[0]);
  EXPECT_TRUE(same[1]);
  EXPECT_EQ(expected.use_count(), 2);
}

TEST(NativePlatformServices, AreThereForTheCore) {
  const TestSupport::LogCapture log;
  const TestSupport::FakeHost host;
  const auto services = Velmora::CreateNativePlatformServices();
  EXPECT_NE(services->GetCompressedFileService(), nullptr);
  EXPECT_NE(services->GetCryptoService(), nullptr);
  EXPECT_NE(services->GetDatabaseService(), nullptr);
  EXPECT_NE(services->GetEncodingService(), nullptr);
  EXPECT_NE(services->GetFileSystemService(), nullptr);
  EXPECT_NE(services->GetJsonUtilityService(), nullptr);
  EXPECT_NE(services->GetLocalStorageService(), nullptr);
  EXPECT_NE(services->GetLoggingService(), nullptr);
  EXPECT_NE(services->GetNetworkService(), nullptr);
  EXPECT_NE(services->GetRemoteFileManagerService(), nullptr);
  EXPECT_NE(services->GetSystemInfoService(), nullptr);
  EXPECT_NE(services->GetUIService(), nullptr);
  EXPECT_NE(services->GetURLService(), nullptr);
  EXPECT_TRUE(services->Dispose(milliseconds(10)));
}

TEST(NativePlatformServices, AreMadeAnewByEachCall) {
  const TestSupport::FakeHost host;
  const auto first = Velmora::CreateNativePlatformServices();
  const auto second = Velmora::CreateNativePlatformServices();
  EXPECT_NE(first, second);
  EXPECT_NE(first->GetCryptoService(), second->GetCryptoService());
}

TEST(NativePlatformServices, AreObjectsOfTheCore) {
  const TestSupport::FakeHost host;
  const auto services = Velmora::CreateNativePlatformServices();
  EXPECT_EQ(Velmora::ObjectToSharedPtr(*services), services);
  EXPECT_TRUE(services->Equals(*services));
}

}  // namespace
