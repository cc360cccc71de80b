#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "QEXCore_iOS/QEXCore.h"

namespace {

using testing::ElementsAre;
using TestSupport::LogLevel;
using TestSupport::RecordingCore;
using Velmora::MobilePrivacyStatus;

class QEXCoreCallbacks : public TestSupport::BridgeFixture {
 protected:
  static std::vector<QEXMobilePrivacyStatus> PrivacyStatus() {
    std::vector<QEXMobilePrivacyStatus> given;
    QEXCore::getPrivacyStatus([&](QEXMobilePrivacyStatus status) { given.push_back(status); });
    return given;
  }

  static std::vector<std::optional<std::string>> Identities() {
    std::vector<std::optional<std::string>> given;
    QEXCore::getSdkIdentities(
        [&](const std::optional<std::string>& identities) { given.push_back(identities); });
    return given;
  }
};

TEST_F(QEXCoreCallbacks, GetPrivacyStatusMapsEveryValue) {
  RecordingCore::SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  EXPECT_THAT(PrivacyStatus(), ElementsAre(QEXMobilePrivacyStatus::optedIn));
  RecordingCore::SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  EXPECT_THAT(PrivacyStatus(), ElementsAre(QEXMobilePrivacyStatus::optedOut));
  RecordingCore::SetPrivacyStatus(MobilePrivacyStatus::Unknown);
  EXPECT_THAT(PrivacyStatus(), ElementsAre(QEXMobilePrivacyStatus::unknown));
  RecordingCore::SetPrivacyStatus(static_cast<MobilePrivacyStatus>(9));
  EXPECT_THAT(PrivacyStatus(), ElementsAre(QEXMobilePrivacyStatus::unknown));
}

TEST_F(QEXCoreCallbacks, GetSdkIdentitiesGivesTheText) {
  RecordingCore::SetIdentities("{\"id\":\"1\"}");
  EXPECT_THAT(Identities(), ElementsAre("{\"id\":\"1\"}"));
}

TEST_F(QEXCoreCallbacks, GetSdkIdentitiesGivesAnAbsentTextForAnEmptyOne) {
  EXPECT_THAT(Identities(), ElementsAre(std::nullopt));
}

TEST_F(QEXCoreCallbacks, StartCallsBackOnce) {
  int calls = 0;
  QEXCore::start([&] { ++calls; });
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(CountOf("Start"), 1);
}

TEST_F(QEXCoreCallbacks, AbsentCallbacksAreNotCalled) {
  QEXCore::start(nullptr);
  QEXCore::getPrivacyStatus(nullptr);
  QEXCore::getSdkIdentities(nullptr);
  EXPECT_EQ(CountOf("Start"), 1);
}

TEST_F(QEXCoreCallbacks, RunOnTheThreadOfTheCore) {
  RecordingCore::SetDelivery(RecordingCore::Delivery::OnAnotherThread);
  std::thread::id started;
  std::thread::id privacy;
  std::thread::id identities;
  QEXCore::start([&] { started = std::this_thread::get_id(); });
  QEXCore::getPrivacyStatus([&](QEXMobilePrivacyStatus) { privacy = std::this_thread::get_id(); });
  QEXCore::getSdkIdentities(
      [&](const std::optional<std::string>&) { identities = std::this_thread::get_id(); });
  RecordingCore::WaitForDeliveries();
  for (const std::thread::id id : {started, privacy, identities}) {
    EXPECT_NE(id, std::thread::id());
    EXPECT_NE(id, std::this_thread::get_id());
  }
}

TEST_F(QEXCoreCallbacks, ThatThrowEndAsOneErrorLineEach) {
  for (const auto delivery :
       {RecordingCore::Delivery::AtOnce, RecordingCore::Delivery::OnAnotherThread}) {
    RecordingCore::SetDelivery(delivery);
    QEXCore::start([] { throw std::runtime_error("host bug"); });
    QEXCore::getPrivacyStatus([](QEXMobilePrivacyStatus) { throw 7; });
    QEXCore::getSdkIdentities(
        [](const std::optional<std::string>&) { throw std::runtime_error("host bug"); });
    RecordingCore::WaitForDeliveries();
    log.ExpectLine(LogLevel::Error, "QEXCore", "the callback of start failed: host bug");
    log.ExpectLine(LogLevel::Error, "QEXCore",
                   "the callback of getPrivacyStatus failed: an exception of an unknown type");
    log.ExpectLine(LogLevel::Error, "QEXCore", "the callback of getSdkIdentities failed: host bug");
  }
}

TEST_F(QEXCoreCallbacks, AreReleasedOnceTheCoreDropsThem) {
  const auto captured = std::make_shared<int>(1);
  QEXCore::start([captured] {});
  QEXCore::getPrivacyStatus([captured](QEXMobilePrivacyStatus) {});
  QEXCore::getSdkIdentities([captured](const std::optional<std::string>&) {});
  EXPECT_EQ(captured.use_count(), 1);
}

TEST_F(QEXCoreCallbacks, AreReleasedWhenTheCoreRefuses) {
  RecordingCore::ThrowFrom("Start", RecordingCore::Thrown::RuntimeError);
  const auto captured = std::make_shared<int>(1);
  QEXCore::start([captured] {});
  log.ExpectLine(LogLevel::Error, "QEXCore", "start failed: scripted");
  EXPECT_EQ(captured.use_count(), 1);
}

TEST_F(QEXCoreCallbacks, MayCallTheSdkAgain) {
  QEXCore::start([] { QEXCore::trackAction("started", {}); });
  EXPECT_THAT(RecordingCore::Operations(), ElementsAre("Create", "Start", "Track"));
}

}  // namespace
