#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/QEXCore.h"
#include "VelmoraCore/Log.h"
#include "interop/AppInfo.h"

namespace {

using Platform::Value;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using TestSupport::RecordingCore;
using Velmora::MobilePrivacyStatus;
using Velmora::Variant;

class QEXCoreForwarding : public TestSupport::BridgeFixture {
 protected:
  // The one call that the operation under test made.
  RecordingCore::Call OnlyCall() {
    auto calls = RecordingCore::TakeCalls();
    if (!calls.empty() && calls.front().operation == "Create") calls.erase(calls.begin());
    EXPECT_EQ(calls.size(), 1U);
    return calls.empty() ? RecordingCore::Call() : calls.front();
  }
};

TEST_F(QEXCoreForwarding, ConfigureWithAppIdHandsOverTheText) {
  QEXCore::configureWithAppId("launch-\xC3\xA4-1");
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "ConfigureWithAppId");
  EXPECT_EQ(call.text, "launch-\xC3\xA4-1");
  EXPECT_EQ(call.core, GetCore().get());
}

TEST_F(QEXCoreForwarding, AnAbsentAppIdIsTheEmptyText) {
  QEXCore::configureWithAppId(std::nullopt);
  EXPECT_EQ(OnlyCall().text, "");
}

TEST_F(QEXCoreForwarding, TextsEndAtTheirFirstZeroByte) {
  QEXCore::configureWithAppId(std::string("app\0id", 6));
  EXPECT_EQ(OnlyCall().text, "app");
}

TEST_F(QEXCoreForwarding, TextsMayBeHuge) {
  const std::string huge(10 << 20, 'x');
  QEXCore::configureWithAppId(huge);
  EXPECT_TRUE(OnlyCall().text == huge);
}

TEST_F(QEXCoreForwarding, ConfigureWithFileInPathHandsOverThePath) {
  QEXCore::configureWithFileInPath("/data/config.json");
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "ConfigureWithFileInPath");
  EXPECT_EQ(call.text, "/data/config.json");
  QEXCore::configureWithFileInPath(std::nullopt);
  EXPECT_EQ(OnlyCall().text, "");
}

TEST_F(QEXCoreForwarding, UpdateConfigurationConvertsEveryKindWithoutAWarning) {
  const Value date = Value::FromObject(std::make_shared<Platform::Date>(1.0));
  QEXCore::updateConfiguration({{"text", "a"},
                                {"number", 7},
                                {"flag", true},
                                {"none", Value::Null()},
                                {"date", date},
                                {"list", Value::Array({1, "b"})},
                                {"inner", {{"x", 1.5}}}});
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "UpdateConfiguration");
  ASSERT_EQ(call.variants.size(), 7U);
  EXPECT_EQ(call.variants.at("text")->GetString(), "a");
  EXPECT_EQ(call.variants.at("number")->GetInteger(), 7);
  EXPECT_TRUE(call.variants.at("flag")->GetBoolean());
  EXPECT_EQ(call.variants.at("none")->GetKind(), Velmora::VariantKind::Null);
  EXPECT_EQ(call.variants.at("date"), nullptr);
  EXPECT_EQ(call.variants.at("list")->GetVariantVector().size(), 2U);
  EXPECT_EQ(call.variants.at("inner")->GetVariantMap().at("x")->GetDouble(), 1.5);
}

TEST_F(QEXCoreForwarding, WhatIsNoDictionaryCountsAsAnEmptyOne) {
  QEXCore::updateConfiguration({});
  EXPECT_THAT(OnlyCall().variants, IsEmpty());
  QEXCore::updateConfiguration("text");
  EXPECT_THAT(OnlyCall().variants, IsEmpty());
  QEXCore::collectPii(Value::Array({"a"}));
  EXPECT_THAT(OnlyCall().strings, IsEmpty());
  QEXCore::lifecycleStart(7);
  EXPECT_THAT(OnlyCall().strings, IsEmpty());
}

TEST_F(QEXCoreForwarding, UpdateConfigurationTakesDeepNesting) {
  Value deep = 1;
  for (int i = 0; i < 100'000; ++i) deep = Value::Array({deep});
  QEXCore::updateConfiguration({{"deep", deep}});
  const auto call = OnlyCall();
  EXPECT_EQ(call.variants.at("deep")->GetKind(), Velmora::VariantKind::VariantVector);
}

TEST_F(QEXCoreForwarding, SetPrivacyStatusMapsEveryValue) {
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedIn);
  EXPECT_EQ(OnlyCall().privacyStatus, MobilePrivacyStatus::OptedIn);
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedOut);
  EXPECT_EQ(OnlyCall().privacyStatus, MobilePrivacyStatus::OptedOut);
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::unknown);
  EXPECT_EQ(OnlyCall().privacyStatus, MobilePrivacyStatus::Unknown);
  QEXCore::setPrivacyStatus(static_cast<QEXMobilePrivacyStatus>(5));
  EXPECT_EQ(OnlyCall().privacyStatus, MobilePrivacyStatus::Unknown);
}

TEST_F(QEXCoreForwarding, SetLogLevelSetsTheModeOfTheCoreWithoutMakingOne) {
  using Velmora::Log;
  using Velmora::LoggingMode;
  QEXCore::setLogLevel(static_cast<QEXMobileLogLevel>(7));
  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Error);
  QEXCore::setLogLevel(QEXMobileLogLevel::debug);
  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Debug);
  QEXCore::setLogLevel(QEXMobileLogLevel::error);
  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Error);
  QEXCore::setLogLevel(QEXMobileLogLevel::warning);
  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Warning);
  QEXCore::setLogLevel(QEXMobileLogLevel::trace);
  EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Trace);
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
}

TEST_F(QEXCoreForwarding, ExtensionVersionDoesNotMakeTheCore) {
  EXPECT_EQ(QEXCore::extensionVersion(), "1.0.0");
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
}

TEST_F(QEXCoreForwarding, SetAppGroupDoesNotMakeTheCore) {
  QEXCore::setAppGroup("group.shop");
  EXPECT_EQ(Velmora::AppInfo::GetAppGroup(), "group.shop");
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
  QEXCore::setAppGroup(std::string("group.shop\0more", 15));
  EXPECT_EQ(Velmora::AppInfo::GetAppGroup(), "group.shop");
  QEXCore::setAppGroup(std::nullopt);
  EXPECT_EQ(Velmora::AppInfo::GetAppGroup(), std::nullopt);
}

TEST_F(QEXCoreForwarding, LifecyclePauseAndDownloadRulesPassOn) {
  QEXCore::lifecyclePause();
  EXPECT_EQ(OnlyCall().operation, "LifecyclePause");
  QEXCore::downloadRules();
  EXPECT_EQ(OnlyCall().operation, "DownloadRules");
}

TEST_F(QEXCoreForwarding, SetAdvertisingIdentifierHandsOverTheText) {
  QEXCore::setAdvertisingIdentifier("6D92078A");
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "SetAdvertisingIdentifier");
  EXPECT_EQ(call.text, "6D92078A");
  QEXCore::setAdvertisingIdentifier(std::nullopt);
  EXPECT_EQ(OnlyCall().text, "");
}

TEST_F(QEXCoreForwarding, SetPushIdentifierWritesTheTokenInHexadecimal) {
  QEXCore::setPushIdentifier(Value::FromData({0x0A, 0x0B}));
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "SetPushIdentifier");
  EXPECT_EQ(call.text, "0AB");
  QEXCore::setPushIdentifier(Value::FromData({0xFF, 0x01}));
  EXPECT_EQ(OnlyCall().text, "FF1");
}

TEST_F(QEXCoreForwarding, SetPushIdentifierWithoutBytesHandsOverTheEmptyText) {
  QEXCore::setPushIdentifier({});
  EXPECT_EQ(OnlyCall().operation, "SetPushIdentifier");
  QEXCore::setPushIdentifier(Value::FromData({}));
  EXPECT_EQ(OnlyCall().text, "");
  QEXCore::setPushIdentifier("0a0b");
  EXPECT_EQ(OnlyCall().text, "");
}

TEST_F(QEXCoreForwarding, CollectLaunchInfoHandsOverTheKnownEntries) {
  QEXCore::collectLaunchInfo(
      {{"krv_deeplink", "app://shop"}, {"krv_m_id", " m1 "}, {"krv_m_l_id", "l1"}, {"other", "x"}});
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "CollectData");
  ASSERT_EQ(call.variants.size(), 3U);
  EXPECT_EQ(call.variants.at("deeplink")->GetString(), "app://shop");
  EXPECT_EQ(call.variants.at("pushmessageid")->GetString(), " m1 ");
  EXPECT_EQ(call.variants.at("notificationid")->GetString(), "l1");
}

TEST_F(QEXCoreForwarding, CollectLaunchInfoWithUnrelatedKeysHandsOverAnEmptyMap) {
  QEXCore::collectLaunchInfo({{"aps", {{"alert", "hello"}}}});
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "CollectData");
  EXPECT_THAT(call.variants, IsEmpty());
  QEXCore::collectLaunchInfo({});
  EXPECT_EQ(OnlyCall().operation, "CollectData");
}

TEST_F(QEXCoreForwarding, ForwardsOnTheCallingThread) {
  GetCore();
  RecordingCore::TakeCalls();
  std::thread::id id;
  {
    std::jthread other([&] {
      id = std::this_thread::get_id();
      QEXCore::trackAction("a", {});
    });
  }
  EXPECT_EQ(OnlyCall().thread, id);
}

TEST_F(QEXCoreForwarding, MayBeCalledOnTwoThreadsOnceTheCoreIsThere) {
  GetCore();
  const auto track = [] {
    for (int i = 0; i < 500; ++i) QEXCore::trackAction("a", {{"k", "v"}});
  };
  {
    const std::jthread other(track);
    track();
  }
  EXPECT_EQ(CountOf("Track"), 1000);
  EXPECT_EQ(CountOf("Create"), 1);
}

TEST_F(QEXCoreForwarding, AsksForTheCoreAnewInEveryCall) {
  QEXCore::downloadRules();
  const auto first = RecordingCore::LastCreated();
  Velmora::VelmoraCoreBridge::ResetInstance();
  RecordingCore::TakeCalls();
  QEXCore::downloadRules();
  EXPECT_NE(OnlyCall().core, first.get());
}

}  // namespace
