#pragma once

#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "platform/linux/SqliteUserDefaultsProvider.h"
#include "support/FakeSystemLog.h"
#include "support/TemporaryDirectory.h"

// User defaults in a folder of their own. Lines on the log that the test does not take fail it.
class SqliteUserDefaultsTest : public testing::Test {
 protected:
  ~SqliteUserDefaultsTest() override { EXPECT_THAT(log_->Lines(), testing::IsEmpty()); }

  // As another process would have it, or the same one after a restart.
  std::shared_ptr<Platform::SqliteUserDefaultsProvider> NewProvider(
      std::chrono::milliseconds patience =
          Platform::SqliteUserDefaultsProvider::kDefaultPatience) const {
    return std::make_shared<Platform::SqliteUserDefaultsProvider>(
        Platform::SqliteUserDefaultsProvider::Folders{Folder(), Folder()}, log_, patience);
  }
  std::shared_ptr<Platform::UserDefaults> NewStandard() const { return NewProvider()->Standard(); }

  std::string Folder() const { return directory_.PathOf("defaults"); }
  std::string StandardPath() const { return Folder() + "/standard.db"; }

  const TestSupport::TemporaryDirectory directory_;
  const std::shared_ptr<TestSupport::FakeSystemLog> log_ =
      std::make_shared<TestSupport::FakeSystemLog>();
};
