#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "interop/AppInfo.h"
#include "support/FakeHost.h"

namespace Velmora {
namespace {

// Knows suites, but can make none.
class ProviderWithoutSuites final : public Platform::UserDefaultsProvider {
 public:
  std::shared_ptr<Platform::UserDefaults> Standard() override { return standard_; }
  bool SupportsSuites() const override { return true; }
  std::shared_ptr<Platform::UserDefaults> OpenSuite(const std::string&) override { return nullptr; }

 private:
  const std::shared_ptr<Platform::UserDefaults> standard_ =
      std::make_shared<TestSupport::FakeUserDefaults>();
};

class AppInfoTest : public testing::Test {
 protected:
  AppInfoTest() { AppInfo::SetAppGroup(std::nullopt); }
  ~AppInfoTest() override { AppInfo::SetAppGroup(std::nullopt); }

  TestSupport::FakeHost host_;
};

TEST_F(AppInfoTest, HasNoGroupUntilOneIsSet) {
  EXPECT_EQ(AppInfo::GetAppGroup(), std::nullopt);
  EXPECT_EQ(AppInfo::GetUserDefaults(), host_.userDefaults->Standard());
}

TEST_F(AppInfoTest, RemembersTheGroupAsItWasSet) {
  AppInfo::SetAppGroup("group.com.example");
  EXPECT_EQ(AppInfo::GetAppGroup(), "group.com.example");
  AppInfo::SetAppGroup("");
  EXPECT_EQ(AppInfo::GetAppGroup(), "");
}

TEST_F(AppInfoTest, UsesTheSuiteOfTheGroup) {
  AppInfo::SetAppGroup("group.com.example");
  const auto defaults = AppInfo::GetUserDefaults();
  ASSERT_NE(defaults, nullptr);
  EXPECT_NE(defaults, host_.userDefaults->Standard());
  defaults->SetObject("key", "value");
  EXPECT_EQ(host_.userDefaults->OpenSuite("group.com.example")->ObjectForKey("key").AsString(),
            "value");
}

TEST_F(AppInfoTest, FollowsALaterGroup) {
  AppInfo::SetAppGroup("group.first");
  AppInfo::GetUserDefaults()->SetObject("key", "first");
  AppInfo::SetAppGroup("group.second");
  EXPECT_TRUE(AppInfo::GetUserDefaults()->ObjectForKey("key").IsAbsent());
  AppInfo::SetAppGroup("group.first");
  EXPECT_EQ(AppInfo::GetUserDefaults()->ObjectForKey("key").AsString(), "first");
}

TEST_F(AppInfoTest, UsesTheStandardDefaultsWhereThereAreNoSuites) {
  host_.userDefaults->SetSupportsSuites(false);
  AppInfo::SetAppGroup("group.com.example");
  EXPECT_EQ(AppInfo::GetUserDefaults(), host_.userDefaults->Standard());
}

TEST_F(AppInfoTest, UsesTheStandardDefaultsWhereTheSuiteCannotBeMade) {
  const auto provider = std::make_shared<ProviderWithoutSuites>();
  Platform::Host host = host_.Copy();
  host.userDefaults = provider;
  Platform::Host::Install(std::move(host));
  AppInfo::SetAppGroup("group.com.example");
  EXPECT_EQ(AppInfo::GetUserDefaults(), provider->Standard());
}

}  // namespace
}  // namespace Velmora
