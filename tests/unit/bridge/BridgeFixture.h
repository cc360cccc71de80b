#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "WatchedUserDefaults.h"
#include "bridge/VelmoraCoreBridge.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/recording_core/RecordingCore.h"

namespace TestSupport {

// A process without a bridge, on a faked device and a recording core, that fails for unexpected log
// lines and leaves no bridge behind.
class BridgeFixture : public testing::Test {
 protected:
  // The key by which the migration finds out whether it is needed; it reads it once when it is not.
  static constexpr char kMigrationTrigger[] = "VRCK1";

  BridgeFixture() {
    RecordingCore::Reset();
    Platform::Host watched = host.Copy();
    watched.userDefaults = std::make_shared<WatchedUserDefaultsProvider>(userDefaults);
    Platform::Host::Install(watched);
  }

  ~BridgeFixture() override {
    userDefaults->OnRead(nullptr);
    RecordingCore::Reset();
    Velmora::VelmoraCoreBridge::ResetInstance();
    RecordingCore::Reset();
  }

  static int CountOf(const std::string& operation) {
    int count = 0;
    for (const std::string& called : RecordingCore::Operations()) count += called == operation;
    return count;
  }

  LogCapture log;
  FakeHost host;
  const std::shared_ptr<WatchedUserDefaults> userDefaults =
      std::make_shared<WatchedUserDefaults>(host.userDefaults->Standard());
};

}  // namespace TestSupport
