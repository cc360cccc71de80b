#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

using Platform::Host;
using TestSupport::ScopedEnvironment;

std::ptrdiff_t NumberOfThreads() {
  return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
}

TEST(DefaultHost, CanBeInstalledAsItIs) {
  const auto former = Host::Current();
  const Host host = Host::CreateDefault();
  EXPECT_NO_THROW(Host::Install(host));
  EXPECT_EQ(Host::Current()->fileManager, host.fileManager);
  EXPECT_EQ(Host::Current()->userDefaults, host.userDefaults);
  Host::Install(*former);
}

TEST(DefaultHost, HasNoScreen) {
  const Platform::ScreenMetrics metrics = Host::CreateDefault().screen->MainScreen();
  EXPECT_EQ(metrics.width, 0);
  EXPECT_EQ(metrics.height, 0);
  EXPECT_EQ(metrics.scale, 1);
}

TEST(DefaultHost, LeavesTheDiskAloneAndStartsNoThreadUntilItIsAsked) {
  const TestSupport::TemporaryDirectory home;
  const ScopedEnvironment homeVariable("HOME", home.Path());
  const ScopedEnvironment caches("XDG_CACHE_HOME", std::nullopt);
  const ScopedEnvironment data("XDG_DATA_HOME", std::nullopt);
  const auto threads = NumberOfThreads();
  const Host host = Host::CreateDefault();
  EXPECT_EQ(NumberOfThreads(), threads);
  EXPECT_TRUE(fs::is_empty(home.Path()));
}

TEST(DefaultHost, IsRefusedWithoutOneOfItsPorts) {
  const auto former = Host::Current();
  Host host = Host::CreateDefault();
  host.telephony = nullptr;
  EXPECT_THROW(Host::Install(host), std::invalid_argument);
  EXPECT_EQ(Host::Current(), former);
}

}  // namespace
