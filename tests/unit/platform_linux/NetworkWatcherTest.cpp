#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Reachability.h"
#include "platform/linux/GioReachability.h"
#include "platform/linux/NetworkWatcher.h"
#include "support/FakeNetworkMonitor.h"
#include "support/ScopedEnvironment.h"
#include "support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;

using Platform::GioReachability;
using Platform::GObjectPointer;
using Platform::kReachabilityFlagConnectionRequired;
using Platform::kReachabilityFlagReachable;
using Platform::NetworkWatcher;

std::optional<std::uint32_t> FlagsFor(bool isAvailable, GNetworkConnectivity connectivity) {
  NetworkWatcher watcher([&](GCancellable*) {
    return TestSupport::NewFakeNetworkMonitor(
        {.isAvailable = isAvailable, .connectivity = connectivity});
  });
  return watcher.Flags();
}

int ThreadsNamed(const std::string& name) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string text;
    std::getline(std::ifstream(entry.path() / "comm"), text);
    if (text == name) ++count;
  }
  return count;
}

TEST(NetworkWatcher, IsReachableWithFullConnectivity) {
  EXPECT_EQ(FlagsFor(true, G_NETWORK_CONNECTIVITY_FULL), kReachabilityFlagReachable);
}

TEST(NetworkWatcher, RequiresAConnectionBehindALoginPage) {
  EXPECT_EQ(FlagsFor(true, G_NETWORK_CONNECTIVITY_PORTAL),
            kReachabilityFlagReachable | kReachabilityFlagConnectionRequired);
}

TEST(NetworkWatcher, IsReachableWithLimitedConnectivity) {
  EXPECT_EQ(FlagsFor(true, G_NETWORK_CONNECTIVITY_LIMITED), kReachabilityFlagReachable);
}

TEST(NetworkWatcher, IsNotReachableOverLocalRoutesAlone) {
  EXPECT_EQ(FlagsFor(true, G_NETWORK_CONNECTIVITY_LOCAL), 0U);
}

TEST(NetworkWatcher, IsNotReachableWithoutANetwork) {
  EXPECT_EQ(FlagsFor(false, G_NETWORK_CONNECTIVITY_FULL), 0U);
  EXPECT_EQ(FlagsFor(false, G_NETWORK_CONNECTIVITY_PORTAL), 0U);
}

TEST(NetworkWatcher, KnowsNothingWithoutAMonitor) {
  NetworkWatcher watcher([](GCancellable*) { return GObjectPointer<GNetworkMonitor>(); });
  EXPECT_EQ(watcher.Flags(), std::nullopt);
}

TEST(NetworkWatcher, RunsOnAThreadThatIsNamedAndGoesWithIt) {
  const int before = ThreadsNamed("QEXReachability");
  {
    NetworkWatcher watcher([](GCancellable*) { return TestSupport::NewFakeNetworkMonitor({}); });
    EXPECT_EQ(watcher.Flags(), kReachabilityFlagReachable);
    EXPECT_EQ(ThreadsNamed("QEXReachability"), before + 1);
  }
  EXPECT_EQ(ThreadsNamed("QEXReachability"), before);
}

TEST(NetworkWatcher, GoesAwayBeforeItsMonitorIsMade) {
  for (int i = 0; i < 50; ++i) {
    const NetworkWatcher watcher(
        [](GCancellable*) { return TestSupport::NewFakeNetworkMonitor({}); });
  }
}

// Stands for a network service that hangs: the monitor is not made until the cancellable fires.
TEST(NetworkWatcher, DoesNotWaitLongForAMonitorThatIsSlowToMake) {
  std::atomic<bool> wasCancelled{false};
  auto watcher = std::make_unique<NetworkWatcher>([&](GCancellable* cancellable) {
    wasCancelled = TestSupport::WaitUntil(
        [cancellable] { return g_cancellable_is_cancelled(cancellable) != FALSE; }, 60s);
    return GObjectPointer<GNetworkMonitor>();
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(watcher->Flags(), std::nullopt);
  EXPECT_EQ(watcher->Flags(), std::nullopt);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
  watcher.reset();
  EXPECT_TRUE(wasCancelled);
}

TEST(NetworkWatcher, MakesTheMonitorOfTheSystem) {
  NetworkWatcher watcher;
  const std::optional<std::uint32_t> flags = watcher.Flags();
  if (flags) {
    constexpr std::uint32_t kKnown =
        kReachabilityFlagReachable | kReachabilityFlagConnectionRequired;
    EXPECT_EQ(*flags & ~kKnown, 0U);
  }
}

// GIO's base monitor knows no routes and takes the network for available.
TEST(NetworkWatcher, MakesTheMonitorThatTheEnvironmentChooses) {
  const TestSupport::ScopedEnvironment environment("GIO_USE_NETWORK_MONITOR", "base");
  NetworkWatcher watcher;
  EXPECT_EQ(watcher.Flags(), kReachabilityFlagReachable);
}

TEST(NetworkWatcher, LeavesTheMonitorThatGioSharesToTheApp) {
  const TestSupport::ScopedEnvironment environment("GIO_USE_NETWORK_MONITOR", "base");
  GNetworkMonitor* shared = g_network_monitor_get_default();
  NetworkWatcher watcher;
  EXPECT_EQ(watcher.Flags(), kReachabilityFlagReachable);
  const guint signal = g_signal_lookup("network-changed", G_TYPE_NETWORK_MONITOR);
  EXPECT_FALSE(g_signal_has_handler_pending(shared, signal, 0, FALSE));
}

TEST(GioReachability, MakesItsWatcherAtTheFirstProbe) {
  int made = 0;
  const GioReachability reachability([&] {
    ++made;
    return std::make_unique<NetworkWatcher>(
        [](GCancellable*) { return TestSupport::NewFakeNetworkMonitor({}); });
  });
  EXPECT_EQ(made, 0);
  EXPECT_NE(reachability.CreateInternetProbe(), nullptr);
  EXPECT_NE(reachability.CreateInternetProbe(), nullptr);
  EXPECT_EQ(made, 1);
}

TEST(GioReachability, GoesAwayWithoutEverBeingAsked) { const GioReachability reachability; }

TEST(GioReachability, ProbesTheRealNetwork) {
  const GioReachability reachability;
  EXPECT_NE(reachability.CreateInternetProbe(), nullptr);
}

}  // namespace
