#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hub/ModuleRegistry.h"
#include "unit/core/hub/HubDoubles.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Velmora::ExternalModuleHost;
using Velmora::ModuleRegistry;
using Addition = ModuleRegistry::Addition;

// Hosts that are never started: the registry calls nothing of theirs.
ModuleRegistry::HostPointer NewHost(const std::string& name) {
  return std::make_shared<ExternalModuleHost>(std::make_shared<RecordingModule>(name), name,
                                              nullptr, 0, Velmora::EventHubLimits());
}

class ModuleRegistryTest : public testing::Test {
 protected:
  ModuleRegistry registry;
  const ModuleRegistry::HostPointer first = NewHost("module");
  const ModuleRegistry::HostPointer second = NewHost("module");
  const ModuleRegistry::HostPointer third = NewHost("module");
};

TEST_F(ModuleRegistryTest, ANameIsGivenOnce) {
  EXPECT_TRUE(registry.Reserve("own"));
  EXPECT_FALSE(registry.Reserve("own"));
  EXPECT_EQ(registry.Add(NewHost("own")), Addition::Taken);
  EXPECT_EQ(registry.Add(first), Addition::MayStart);
  EXPECT_EQ(registry.Add(second), Addition::Taken);
  EXPECT_THAT(*registry.Active(), ElementsAre(first));
}

TEST_F(ModuleRegistryTest, ASuccessorWaitsForTheEndOfItsPredecessor) {
  registry.Add(first);
  EXPECT_TRUE(registry.Remove(first));
  EXPECT_FALSE(registry.Remove(first));
  EXPECT_EQ(registry.Add(second), Addition::MustWait);
  EXPECT_THAT(*registry.Active(), ElementsAre(second));
  EXPECT_EQ(registry.OnEnded(first), second);
  EXPECT_THAT(registry.TakeEnded(), ElementsAre(first));
  EXPECT_THAT(registry.TakeEnded(), IsEmpty());
}

TEST_F(ModuleRegistryTest, ASuccessorThatLeavesBeforeItCouldStartIsForgotten) {
  registry.Add(first);
  registry.Remove(first);
  registry.Add(second);
  EXPECT_TRUE(registry.Remove(second));
  EXPECT_THAT(registry.All(), ElementsAre(first)) << "the one that is still ending is kept";
  EXPECT_EQ(registry.Add(third), Addition::MustWait);
  EXPECT_EQ(registry.OnEnded(first), third);
}

TEST_F(ModuleRegistryTest, ANameIsFreeWhenItsModuleHasEnded) {
  registry.Add(first);
  registry.Remove(first);
  EXPECT_EQ(registry.OnEnded(first), nullptr);
  EXPECT_EQ(registry.Add(second), Addition::MayStart);
  registry.Discard(second);
  EXPECT_THAT(*registry.Active(), IsEmpty());
  EXPECT_EQ(registry.Add(third), Addition::MayStart);
}

TEST_F(ModuleRegistryTest, NothingIsAddedOnceItIsClosed) {
  const auto other = NewHost("other");
  registry.Add(first);
  registry.Add(other);
  registry.Remove(other);
  registry.Close();
  EXPECT_EQ(registry.Add(second), Addition::Closed);
  EXPECT_EQ(registry.Add(NewHost("new")), Addition::Closed);
  EXPECT_THAT(registry.All(), UnorderedElementsAre(first, other));
}

}  // namespace
