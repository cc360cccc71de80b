#include <gmock/gmock.h>

#include "platform/linux/UserDirectories.h"
#include "support/ScopedEnvironment.h"

namespace {

using TestSupport::ScopedEnvironment;

TEST(UserDirectories, FollowsTheEnvironment) {
  const ScopedEnvironment home("HOME", "/home/someone");
  const ScopedEnvironment caches("XDG_CACHE_HOME", "/caches");
  const ScopedEnvironment data("XDG_DATA_HOME", "/data");
  EXPECT_EQ(Platform::UserCacheHome(), "/caches");
  EXPECT_EQ(Platform::UserDataHome(), "/data");
}

TEST(UserDirectories, FallsBackToTheHomeDirectory) {
  const ScopedEnvironment home("HOME", "/home/someone");
  const ScopedEnvironment caches("XDG_CACHE_HOME", "");
  const ScopedEnvironment data("XDG_DATA_HOME", "relative/data");
  EXPECT_EQ(Platform::UserCacheHome(), "/home/someone/.cache");
  EXPECT_EQ(Platform::UserDataHome(), "/home/someone/.local/share");
}

TEST(UserDirectories, NamesNoneWithoutAHomeDirectory) {
  const ScopedEnvironment home("HOME", std::nullopt);
  const ScopedEnvironment caches("XDG_CACHE_HOME", std::nullopt);
  const ScopedEnvironment data("XDG_DATA_HOME", std::nullopt);
  EXPECT_EQ(Platform::UserCacheHome(), "");
  EXPECT_EQ(Platform::UserDataHome(), "");
}

TEST(UserDirectories, NamesTheProgramByItsFile) {
  EXPECT_EQ(Platform::ProgramName(), "platform_linux_unit");
}

}  // namespace
