// What NativeSystemInfoService tells about the device, the process and the network.

#include <cstdint>
#include <locale>
#include <optional>
#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "SystemInfoFixture.h"
#include "support/ScopedEnvironment.h"

namespace {

using Platform::kReachabilityFlagConnectionRequired;
using Platform::kReachabilityFlagReachable;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using TestSupport::FakeTelephony;
using TestSupport::LogLevel;
using TestSupport::ScopedEnvironment;
using Velmora::ConnectionStatus;

constexpr const char* kLocaleFailure =
    "Failed to get valid c++ locale string from iOS Platform. Returning the default locale";

using NativeSystemInfoDevice = SystemInfoFixture;

TEST_F(NativeSystemInfoDevice, GivesItsFixedTextsOnEveryCall) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(service->GetCanonicalPlatformName(), "ios");
    EXPECT_EQ(service->GetSdkVersion(), "CPP-5.0.0-OIP");
  }
}

TEST_F(NativeSystemInfoDevice, MakesTheLocaleThatTheDeviceNames) {
  host.locale->SetCurrentIdentifier("C.UTF-8");
  EXPECT_EQ(service->GetActiveLocale().name(), "C.UTF-8");
  host.locale->SetCurrentIdentifier("C");
  EXPECT_EQ(service->GetActiveLocale().name(), "C");
}

TEST_F(NativeSystemInfoDevice, FallsBackToTheEnvironmentsLocaleAndLogsAnError) {
  const ScopedEnvironment environment("LC_ALL", "C.UTF-8");
  host.locale->SetCurrentIdentifier("xx_NOWHERE");
  log.ExpectLine(LogLevel::Error, kTag, kLocaleFailure);
  EXPECT_EQ(service->GetActiveLocale().name(), "C.UTF-8");
}

TEST_F(NativeSystemInfoDevice, FallsBackToTheClassicLocaleWhenTheEnvironmentsIsUnknownToo) {
  const ScopedEnvironment environment("LC_ALL", "xx_NOWHERE");
  host.locale->SetCurrentIdentifier("xx_NOWHERE");
  log.ExpectLine(LogLevel::Error, kTag, kLocaleFailure);
  EXPECT_EQ(service->GetActiveLocale(), std::locale::classic());
}

TEST_F(NativeSystemInfoDevice, TakesTheEnvironmentsLocaleWhenTheDeviceNamesNone) {
  const ScopedEnvironment environment("LC_ALL", "C.UTF-8");
  host.locale->SetCurrentIdentifier("");
  EXPECT_EQ(service->GetActiveLocale().name(), "C.UTF-8");
}

TEST_F(NativeSystemInfoDevice, SurvivesHostileLocaleIdentifiers) {
  const ScopedEnvironment environment("LC_ALL", "C.UTF-8");
  for (const std::string& identifier : {std::string("../../../etc/passwd"), std::string("en_US;rm"),
                                        std::string("\xFF\xFE"), std::string(1'000'000, 'x')}) {
    host.locale->SetCurrentIdentifier(identifier);
    log.ExpectLine(LogLevel::Error, kTag, kLocaleFailure);
    EXPECT_EQ(service->GetActiveLocale().name(), "C.UTF-8");
  }
}

TEST_F(NativeSystemInfoDevice, GivesTheHardwareModelUpToItsFirstZeroByte) {
  host.device->SetHardwareModel(std::string("iPhone10,3\0more", 15));
  EXPECT_EQ(service->GetDeviceName(), "iPhone10,3");
}

TEST_F(NativeSystemInfoDevice, CutsTheBuildOutOfTheSystemsVersionText) {
  host.processInfo->SetOperatingSystemVersionString("Version 12.1 (Build 16B92)");
  EXPECT_EQ(service->GetDeviceBuildId(), "16B92");
}

TEST_F(NativeSystemInfoDevice, TakesTheLastPieceOfWhateverVersionTextThereIs) {
  const auto buildOf = [this](const std::string& text) {
    host.processInfo->SetOperatingSystemVersionString(text);
    return service->GetDeviceBuildId();
  };
  EXPECT_EQ(buildOf("16B92)"), "16B92");
  EXPECT_EQ(buildOf("Version 12.1 "), "");
  EXPECT_EQ(buildOf(" "), "");
  EXPECT_EQ(buildOf("x"), "");
  EXPECT_EQ(buildOf(""), "");
  EXPECT_EQ(buildOf("Build 16B92\u00e4"), "16B92");
  EXPECT_EQ(buildOf("Build 16B92\xBF\xBF"), "16B9");
}

TEST_F(NativeSystemInfoDevice, GivesTheCarriersName) {
  host.telephony->SetSubscriber(FakeTelephony::Subscriber{.carrierName = "Fake Mobile"});
  EXPECT_EQ(service->GetMobileCarrierName(), "Fake Mobile");
}

TEST_F(NativeSystemInfoDevice, GivesNullInParenthesesForACarrierWithoutAName) {
  host.telephony->SetSubscriber(FakeTelephony::Subscriber{.carrierName = std::nullopt});
  EXPECT_EQ(service->GetMobileCarrierName(), "(null)");
}

TEST_F(NativeSystemInfoDevice, KnowsNoCarrierWithoutTelephony) {
  host.telephony->SetSubscriber(std::nullopt);
  EXPECT_EQ(service->GetMobileCarrierName(), "Unknown");
}

TEST_F(NativeSystemInfoDevice, KnowsNoCarrierWhereTelephonyKnowsNoProvider) {
  host.telephony->SetSubscriber(FakeTelephony::Subscriber{.knowsProvider = false});
  EXPECT_EQ(service->GetMobileCarrierName(), "Unknown");
}

TEST_F(NativeSystemInfoDevice, IsConnectedWhenTheInternetIsReachable) {
  host.reachability->SetFlags(kReachabilityFlagReachable);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::Connected);
  EXPECT_EQ(static_cast<std::int32_t>(service->GetNetworkConnectionStatus()), 0);
}

TEST_F(NativeSystemInfoDevice, IsNotConnectedWhenAConnectionMustBeMadeFirst) {
  host.reachability->SetFlags(kReachabilityFlagReachable | kReachabilityFlagConnectionRequired);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::NotConnected);
  EXPECT_EQ(static_cast<std::int32_t>(service->GetNetworkConnectionStatus()), 1);
}

TEST_F(NativeSystemInfoDevice, IsNotConnectedWhenTheReachableFlagIsClear) {
  for (const std::uint32_t flags : {0U, 1U, 4U, 0xFFFFFFFDU}) {
    host.reachability->SetFlags(flags);
    EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::NotConnected) << flags;
  }
}

TEST_F(NativeSystemInfoDevice, LooksAtNoOtherFlags) {
  host.reachability->SetFlags(0xFFFFFFFBU);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::Connected);
}

TEST_F(NativeSystemInfoDevice, KnowsNoNetworkStatusWhenTheFlagsCannotBeRead) {
  host.reachability->SetFlags(std::nullopt);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::Unknown);
  EXPECT_EQ(static_cast<std::int32_t>(service->GetNetworkConnectionStatus()), 2);
}

TEST_F(NativeSystemInfoDevice, IsNotConnectedWhenNoProbeCanBeMade) {
  host.reachability->SetCanCreateProbes(false);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::NotConnected);
}

TEST_F(NativeSystemInfoDevice, ReadsTheNetworkStatusAfreshOnEveryCall) {
  host.reachability->SetFlags(0);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::NotConnected);
  host.reachability->SetFlags(kReachabilityFlagReachable);
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::Connected);
}

TEST_F(NativeSystemInfoDevice, PutsALineEndBeforeEachFrameOfTheStack) {
  host.processInfo->SetCallStackSymbols({"0 first", "1 second"});
  EXPECT_EQ(service->GetCurrentStackTrace(), "\n0 first\n1 second");
}

TEST_F(NativeSystemInfoDevice, GivesAnEmptyTextForAnEmptyStack) {
  host.processInfo->SetCallStackSymbols({});
  EXPECT_EQ(service->GetCurrentStackTrace(), "");
}

TEST_F(NativeSystemInfoDevice, NamesTheCallingThread) {
  std::thread::id worker;
  std::thread thread([&] {
    worker = std::this_thread::get_id();
    service->SetCurrentThreadName("Worker");
  });
  thread.join();
  EXPECT_THAT(host.processInfo->ThreadNames(), ElementsAre(Pair(worker, "Worker")));
}

TEST_F(NativeSystemInfoDevice, CutsAThreadNameTo15Bytes) {
  service->SetCurrentThreadName("12345678901234567890");
  service->SetCurrentThreadName("123456789012345");
  service->SetCurrentThreadName(std::string(10'000'000, 'x'));
  const auto names = host.processInfo->ThreadNames();
  ASSERT_EQ(names.size(), 3U);
  EXPECT_EQ(names[0].second, "123456789012345");
  EXPECT_EQ(names[1].second, "123456789012345");
  EXPECT_EQ(names[2].second, std::string(15, 'x'));
}

TEST_F(NativeSystemInfoDevice, CutsNoCharacterOfAThreadNameInTwo) {
  service->SetCurrentThreadName("12345678901234\u00e4");
  const auto names = host.processInfo->ThreadNames();
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0].second, "12345678901234");
}

TEST_F(NativeSystemInfoDevice, KeepsTheStartOfAThreadNameThatIsMalformedBehindIt) {
  service->SetCurrentThreadName("123456789012345\xFF");
  const auto names = host.processInfo->ThreadNames();
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0].second, "123456789012345");
}

TEST_F(NativeSystemInfoDevice, LeavesTheThreadsNameForAnEmptyOrMalformedOne) {
  service->SetCurrentThreadName("");
  service->SetCurrentThreadName("\xFF");
  service->SetCurrentThreadName(std::string("\0name", 5));
  EXPECT_THAT(host.processInfo->ThreadNames(), IsEmpty());
}

TEST_F(NativeSystemInfoDevice, SurvivesADeviceThatFails) {
  FailEveryPort();
  const ScopedEnvironment environment("LC_ALL", "C.UTF-8");
  log.ExpectLine(LogLevel::Error, kTag, kLocaleFailure);
  EXPECT_EQ(service->GetActiveLocale().name(), "C.UTF-8");
  EXPECT_EQ(service->GetDeviceName(), "");
  EXPECT_EQ(service->GetDeviceBuildId(), "");
  EXPECT_EQ(service->GetMobileCarrierName(), "Unknown");
  EXPECT_EQ(service->GetCurrentStackTrace(), "");
  EXPECT_EQ(service->GetNetworkConnectionStatus(), ConnectionStatus::NotConnected);
  EXPECT_NO_THROW(service->SetCurrentThreadName("Worker"));
}

}  // namespace
