// The SDK as an app has it, real core, real services, real files, built up and given up again.

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/QEXCore.h"
#include "VelmoraCore/Core.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Event.h"
#include "VelmoraCore/SdkError.h"
#include "bridge/VelmoraCoreBridge.h"
#include "interop/AppInfo.h"
#include "support/WaitUntil.h"

namespace {

using TestSupport::WaitUntil;
using Velmora::VelmoraCoreBridge;

class Restart : public testing::Test {
 protected:
  ~Restart() override { VelmoraCoreBridge::ResetInstance(); }
};

bool Starts() {
  auto isStarted = std::make_shared<std::atomic<bool>>(false);
  QEXCore::start([isStarted] { *isStarted = true; });
  return WaitUntil([&] { return isStarted->load(); });
}

QEXMobilePrivacyStatus PrivacyStatus() {
  auto status = std::make_shared<std::atomic<int>>(-1);
  QEXCore::getPrivacyStatus(
      [status](QEXMobilePrivacyStatus answer) { *status = static_cast<int>(answer); });
  EXPECT_TRUE(WaitUntil([&] { return status->load() >= 0; }));
  return static_cast<QEXMobilePrivacyStatus>(status->load());
}

std::ptrdiff_t CountThreadsOfTheCore() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::count_if(begin(tasks), end(tasks), [](const auto& task) {
    std::string name;
    std::getline(std::ifstream(task.path() / "comm"), name);
    return name.starts_with("Velmora");
  });
}

TEST_F(Restart, AppGroupIsAbsentInAFreshProcess) {
  EXPECT_EQ(Velmora::AppInfo::GetAppGroup(), std::nullopt);
}

TEST_F(Restart, GivesANewCoreThatWorks) {
  for (int round = 0; round < 10; ++round) {
    const std::shared_ptr<Velmora::Core> core = GetCore();
    EXPECT_TRUE(Starts());
    QEXCore::trackAction("work", {{"sku", "A-17"}});
    VelmoraCoreBridge::ResetInstance();
    EXPECT_NE(GetCore(), core);
    EXPECT_TRUE(Starts());
  }
}

TEST_F(Restart, LeavesNoThreadOfTheOldCore) {
  EXPECT_TRUE(Starts());
  const auto count = CountThreadsOfTheCore();
  EXPECT_GT(count, 0);
  VelmoraCoreBridge::ResetInstance();
  EXPECT_EQ(CountThreadsOfTheCore(), 0);
  EXPECT_TRUE(Starts());
  EXPECT_EQ(CountThreadsOfTheCore(), count);
}

TEST_F(Restart, LeavesTheOldCoreToItsHoldersDisposed) {
  const std::shared_ptr<Velmora::Core> core = GetCore();
  EXPECT_TRUE(Starts());
  VelmoraCoreBridge::ResetInstance();
  std::string code;
  core->DispatchEvent(std::make_shared<Velmora::Event>("late", "app", "request", nullptr),
                      [&](Velmora::SdkError& error) { code = error.GetCode(); });
  EXPECT_EQ(code, Velmora::ErrorCodes::kEventHubDisposed);
}

TEST_F(Restart, KeepsWhatWasAskedForBefore) {
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedIn);
  VelmoraCoreBridge::ResetInstance();
  EXPECT_EQ(PrivacyStatus(), QEXMobilePrivacyStatus::optedIn);
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedOut);
  VelmoraCoreBridge::ResetInstance();
  EXPECT_EQ(PrivacyStatus(), QEXMobilePrivacyStatus::optedOut);
}

}  // namespace
