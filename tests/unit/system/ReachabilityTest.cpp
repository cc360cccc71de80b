#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "services/system/Reachability.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"

namespace {

using Platform::kReachabilityFlagConnectionRequired;
using Platform::kReachabilityFlagReachable;
using TestSupport::FakeHost;
using Velmora::Reachability;
using Velmora::ReachabilityStatus;

TEST(Reachability, IsReachableWithTheReachableFlagAlone) {
  const FakeHost host;
  host.reachability->SetFlags(kReachabilityFlagReachable);
  const auto probe = Reachability::reachabilityForInternetConnection();
  ASSERT_NE(probe, nullptr);
  EXPECT_EQ(probe->reachabilityStatus(), ReachabilityStatus::Reachable);
  EXPECT_EQ(static_cast<int>(probe->reachabilityStatus()), 1);
}

TEST(Reachability, IsNotReachableWhenAConnectionIsRequired) {
  const FakeHost host;
  host.reachability->SetFlags(kReachabilityFlagReachable | kReachabilityFlagConnectionRequired);
  const auto probe = Reachability::reachabilityForInternetConnection();
  ASSERT_NE(probe, nullptr);
  EXPECT_EQ(probe->reachabilityStatus(), ReachabilityStatus::NotReachable);
  EXPECT_EQ(static_cast<int>(probe->reachabilityStatus()), 0);
}

TEST(Reachability, IsUnreadableWithoutFlags) {
  const FakeHost host;
  host.reachability->SetFlags(std::nullopt);
  const auto probe = Reachability::reachabilityForInternetConnection();
  ASSERT_NE(probe, nullptr);
  EXPECT_EQ(probe->reachabilityStatus(), ReachabilityStatus::Unreadable);
  EXPECT_EQ(static_cast<int>(probe->reachabilityStatus()), 2);
}

TEST(Reachability, IsUnreadableWhenReadingTheFlagsFails) {
  const FakeHost host;
  const Reachability probe(std::make_unique<TestSupport::FailingReachabilityProbe>());
  EXPECT_EQ(probe.reachabilityStatus(), ReachabilityStatus::Unreadable);
}

TEST(Reachability, IsNoneWhereTheDeviceMakesNoProbe) {
  const FakeHost host;
  host.reachability->SetCanCreateProbes(false);
  EXPECT_EQ(Reachability::reachabilityForInternetConnection(), nullptr);
}

TEST(Reachability, IsNoneWhenMakingAProbeFails) {
  const FakeHost host;
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  EXPECT_EQ(Reachability::reachabilityForInternetConnection(), nullptr);
}

}  // namespace
