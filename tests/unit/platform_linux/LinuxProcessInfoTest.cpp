#include <array>
#include <thread>

#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/utsname.h>

#include "platform/linux/LinuxProcessInfo.h"
#include "support/TemporaryDirectory.h"

// With a name that the dynamic linker knows, so that the stack can show it.
__attribute__((visibility("default"), noinline)) std::vector<std::string> StackOfANamedFunction() {
  auto symbols = Platform::LinuxProcessInfo().CallStackSymbols();
  symbols.emplace_back("the end");
  return symbols;
}

__attribute__((noinline)) std::size_t StackDepthAfter(int calls) {
  if (calls == 0) return Platform::LinuxProcessInfo().CallStackSymbols().size();
  const std::size_t depth = StackDepthAfter(calls - 1);
  EXPECT_GT(depth, 0U);
  return depth;
}

namespace {

using testing::MatchesRegex;

std::string VersionWith(const std::string& osRelease) {
  const TestSupport::TemporaryDirectory root;
  root.WriteFile("etc/os-release", osRelease);
  return Platform::LinuxProcessInfo(root.Path()).OperatingSystemVersionString();
}

std::string KernelRelease() {
  utsname kernel{};
  ::uname(&kernel);
  return kernel.release;
}

std::string NameOfCurrentThread() {
  std::array<char, 16> name{};
  ::pthread_getname_np(::pthread_self(), name.data(), name.size());
  return name.data();
}

TEST(LinuxProcessInfo, TakesVersionAndBuildFromTheDistribution) {
  EXPECT_EQ(VersionWith("NAME=X\nVERSION_ID=\"12.4\"\nBUILD_ID='2024.02.29'\n"),
            "Version 12.4 (Build 2024.02.29)");
}

TEST(LinuxProcessInfo, TakesTheKernelsReleaseForWhatTheDistributionLeavesOut) {
  const std::string kernel = KernelRelease();
  EXPECT_EQ(VersionWith("VERSION_ID=12\n"), "Version 12 (Build " + kernel + ")");
  EXPECT_EQ(VersionWith("BUILD_ID=rolling\n"), "Version " + kernel + " (Build rolling)");
  EXPECT_EQ(VersionWith(""), "Version " + kernel + " (Build " + kernel + ")");
  EXPECT_EQ(VersionWith("VERSION_ID=\nBUILD_ID=\n"),
            "Version " + kernel + " (Build " + kernel + ")");
}

TEST(LinuxProcessInfo, LeavesNoBlankInVersionAndBuild) {
  EXPECT_EQ(VersionWith("VERSION_ID=\"12 beta\"\nBUILD_ID=\"a b  c\"\n"),
            "Version 12-beta (Build a-b--c)");
}

TEST(LinuxProcessInfo, NamesTheFunctionsOnTheStackForPeople) {
  const auto symbols = StackOfANamedFunction();
  ASSERT_GE(symbols.size(), 2U);
  EXPECT_THAT(symbols.front(),
              MatchesRegex("0 platform_linux_unit 0x[0-9a-f]+ StackOfANamedFunction.*\\(\\) \\+ "
                           "[0-9]+"));
}

TEST(LinuxProcessInfo, NumbersTheFramesFromTheInnermost) {
  const auto symbols = Platform::LinuxProcessInfo().CallStackSymbols();
  for (std::size_t index = 0; index < symbols.size(); ++index) {
    EXPECT_THAT(symbols[index], testing::StartsWith(std::to_string(index) + ' '));
  }
}

TEST(LinuxProcessInfo, ShowsTheInnermostFramesOfADeepStack) {
  EXPECT_EQ(StackDepthAfter(1000), 128U);
  EXPECT_LT(StackDepthAfter(0), 128U);
}

TEST(LinuxProcessInfo, NamesTheCallingThreadOnly) {
  const std::string former = NameOfCurrentThread();
  std::string name;
  std::thread thread([&] {
    Platform::LinuxProcessInfo().SetCurrentThreadName("fifteen bytes!!");
    name = NameOfCurrentThread();
  });
  thread.join();
  EXPECT_EQ(name, "fifteen bytes!!");
  EXPECT_EQ(NameOfCurrentThread(), former);
}

TEST(LinuxProcessInfo, LeavesTheNameWhenTheNewOneIsTooLong) {
  std::thread thread([] {
    Platform::LinuxProcessInfo().SetCurrentThreadName("short");
    Platform::LinuxProcessInfo().SetCurrentThreadName("sixteen bytes!!!");
    EXPECT_EQ(NameOfCurrentThread(), "short");
  });
  thread.join();
}

}  // namespace
