#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/GioReachability.h"
#include "platform/linux/NetworkWatcher.h"
#include "support/FakeNetworkMonitor.h"
#include "support/FakeReachability.h"

namespace {

using Platform::kReachabilityFlagConnectionRequired;
using Platform::kReachabilityFlagReachable;
using TestSupport::NetworkCondition;

constexpr std::uint32_t kBoth = kReachabilityFlagReachable | kReachabilityFlagConnectionRequired;

// The network of a device, as each subject takes it.
enum class Network { Open, BehindALogin, Missing };

// Each subject can change its network, be unable to read it, or to make probes.
class GioSubject {
 public:
  ~GioSubject() { reachability_.reset(); }

  void Be(Network network) {
    if (!monitor_) return Start(network);
    std::promise<void> done;
    change_ = [&] {
      TestSupport::ChangeNetwork(monitor_, ConditionOf(network));
      done.set_value();
    };
    g_main_context_invoke(context_, &GioSubject::OnContext, this);
    done.get_future().get();
  }

  void HaveNoFlags() {
    reachability_ = std::make_unique<Platform::GioReachability>([] {
      return std::make_unique<Platform::NetworkWatcher>(
          [](GCancellable*) { return Platform::GObjectPointer<GNetworkMonitor>(); });
    });
  }

  void HaveNoProbes() {
    reachability_ = std::make_unique<Platform::GioReachability>(
        []() -> std::unique_ptr<Platform::NetworkWatcher> {
          throw std::runtime_error("no thread");
        });
  }

  const Platform::NetworkReachability& Reachability() const { return *reachability_; }

 private:
  static NetworkCondition ConditionOf(Network network) {
    switch (network) {
      case Network::Open:
        return {.isAvailable = true, .connectivity = G_NETWORK_CONNECTIVITY_FULL};
      case Network::BehindALogin:
        return {.isAvailable = true, .connectivity = G_NETWORK_CONNECTIVITY_PORTAL};
      case Network::Missing:
        break;
    }
    return {.isAvailable = false, .connectivity = G_NETWORK_CONNECTIVITY_LOCAL};
  }

  static gboolean OnContext(gpointer self) {
    static_cast<GioSubject*>(self)->change_();
    return G_SOURCE_REMOVE;
  }

  void Start(Network network) {
    reachability_ = std::make_unique<Platform::GioReachability>([this, network] {
      return std::make_unique<Platform::NetworkWatcher>([this, network](GCancellable*) {
        auto monitor = TestSupport::NewFakeNetworkMonitor(ConditionOf(network));
        monitor_ = monitor.get();
        context_ = g_main_context_get_thread_default();
        return monitor;
      });
    });
    reachability_->CreateInternetProbe();  // makes the monitor
  }

  GNetworkMonitor* monitor_ = nullptr;
  GMainContext* context_ = nullptr;
  std::function<void()> change_;
  std::unique_ptr<Platform::GioReachability> reachability_;
};

class FakeSubject {
 public:
  void Be(Network network) {
    switch (network) {
      case Network::Open:
        return reachability_.SetFlags(kReachabilityFlagReachable);
      case Network::BehindALogin:
        return reachability_.SetFlags(kBoth);
      case Network::Missing:
        return reachability_.SetFlags(0);
    }
  }
  void HaveNoFlags() { reachability_.SetFlags(std::nullopt); }
  void HaveNoProbes() { reachability_.SetCanCreateProbes(false); }
  const Platform::NetworkReachability& Reachability() const { return reachability_; }

 private:
  TestSupport::FakeReachability reachability_;
};

template <class Subject>
class ReachabilityContractTest : public testing::Test {
 protected:
  std::optional<std::uint32_t> Flags() const {
    const auto probe = subject_.Reachability().CreateInternetProbe();
    EXPECT_NE(probe, nullptr);
    return probe ? probe->Flags() : std::nullopt;
  }

  Subject subject_;
};

using Subjects = testing::Types<GioSubject, FakeSubject>;
TYPED_TEST_SUITE(ReachabilityContractTest, Subjects);

TYPED_TEST(ReachabilityContractTest, IsReachableOverAnOpenNetwork) {
  this->subject_.Be(Network::Open);
  EXPECT_EQ(this->Flags(), kReachabilityFlagReachable);
}

TYPED_TEST(ReachabilityContractTest, RequiresAConnectionBehindALoginPage) {
  this->subject_.Be(Network::BehindALogin);
  EXPECT_EQ(this->Flags(), kBoth);
}

TYPED_TEST(ReachabilityContractTest, IsNotReachableWithoutANetwork) {
  this->subject_.Be(Network::Missing);
  EXPECT_EQ(this->Flags(), 0U);
}

TYPED_TEST(ReachabilityContractTest, SeesTheNetworkComeAndGo) {
  this->subject_.Be(Network::Missing);
  EXPECT_EQ(this->Flags(), 0U);
  this->subject_.Be(Network::BehindALogin);
  EXPECT_EQ(this->Flags(), kBoth);
  this->subject_.Be(Network::Open);
  EXPECT_EQ(this->Flags(), kReachabilityFlagReachable);
  this->subject_.Be(Network::Missing);
  EXPECT_EQ(this->Flags(), 0U);
}

TYPED_TEST(ReachabilityContractTest, GivesNothingForFlagsThatCannotBeRead) {
  this->subject_.HaveNoFlags();
  EXPECT_EQ(this->Flags(), std::nullopt);
}

TYPED_TEST(ReachabilityContractTest, GivesNullWhenNoProbeCanBeMade) {
  this->subject_.HaveNoProbes();
  EXPECT_EQ(this->subject_.Reachability().CreateInternetProbe(), nullptr);
}

TYPED_TEST(ReachabilityContractTest, ServesSeveralThreadsAtOnce) {
  this->subject_.Be(Network::Open);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int j = 0; j < 100; ++j) EXPECT_EQ(this->Flags(), kReachabilityFlagReachable);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
