#include <memory>
#include <string>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/EventNames.h"
#include "hub/ExternalModuleServices.h"
#include "unit/core/hub/HubFixture.h"

namespace {

using testing::ElementsAre;
namespace ErrorCodes = Velmora::ErrorCodes;
namespace EventKeys = Velmora::EventKeys;
namespace EventSources = Velmora::EventSources;
namespace EventTypes = Velmora::EventTypes;

class ExternalModuleServicesTest : public HubFixture {
 protected:
  ModuleServices ServicesOf(const std::string& name) {
    const auto module = std::make_shared<RecordingModule>(name);
    EXPECT_EQ(Register(module), "");
    EXPECT_TRUE(module->WaitForCalls({"register"}));
    return module->Services();
  }
  static std::string TextOf(const std::shared_ptr<std::string>& text) {
    return text == nullptr ? "none" : *text;
  }
};

TEST_F(ExternalModuleServicesTest, RefusesBadListeners) {
  StartHub();
  const ModuleServices module = ServicesOf("module");
  const auto listener = std::make_shared<RecordingListener>();
  EXPECT_EQ(CodeThrownBy([&] { module->RegisterListener(listener, "", "s"); }),
            ErrorCodes::kExternalModuleEventTypeNotSupported);
  EXPECT_EQ(CodeThrownBy([&] { module->RegisterListener(listener, "t t", "s"); }),
            ErrorCodes::kExternalModuleEventTypeNotSupported);
  EXPECT_EQ(CodeThrownBy([&] { module->RegisterListener(listener, "t", "\x01"); }),
            ErrorCodes::kExternalModuleEventSourceNotSupported);
  EXPECT_EQ(CodeThrownBy([&] { module->RegisterListener(nullptr, "t", "s"); }),
            ErrorCodes::kExternalModuleListenerWasNull);
  EXPECT_EQ(CodeThrownBy([&] { module->RegisterWildcardListener(nullptr); }),
            ErrorCodes::kExternalModuleListenerWasNull);
  Finish();
  EXPECT_THAT(listener->Calls(), ElementsAre());
}

TEST_F(ExternalModuleServicesTest, OthersAreToldOfTheStatesThatGoWithAModule) {
  StartHub();
  const auto watching = std::make_shared<RecordingListener>();
  RegisterWith("watching", watching, EventTypes::kHub, EventSources::kSharedState);
  ServicesOf("stateless")->UnregisterExtension();
  const ModuleServices leaving = ServicesOf("leaving");
  leaving->SetSharedEventState("{}", nullptr);
  EXPECT_TRUE(watching->WaitForCount(1));
  leaving->UnregisterExtension();
  leaving->UnregisterExtension();
  EXPECT_TRUE(watching->WaitForCount(2));
  Finish();
  ASSERT_EQ(watching->Count(), 2U);
  for (const EventPointer& event : watching->Heard()) {
    EXPECT_EQ(event->GetData()->Get(EventKeys::kStateOwner)->GetString(), "leaving");
  }
}

TEST_F(ExternalModuleServicesTest, StatesAreVersionedByTheEventThatIsHeard) {
  StartHub();
  std::shared_ptr<RecordingModule> module;
  const auto listener = std::make_shared<RecordingListener>([&](const EventPointer& event) {
    module->Services()->SetSharedEventState(event->GetName(), event);
  });
  module = RegisterWith("module", listener);
  for (const char* name : {"one", "two"}) {
    EXPECT_EQ(Dispatch(NewEvent(name)), "");
    EXPECT_EQ(Dispatch(NewEvent(name, "other.type")), "");
  }
  EXPECT_TRUE(listener->WaitForCount(2));
  const ModuleServices reader = ServicesOf("reader");
  const auto at = [&](std::int64_t number) {
    return TextOf(reader->GetSharedEventState("module", NewEvent("")->WithNumber(number)));
  };
  const std::int64_t second = listener->Heard()[1]->GetNumber();
  EXPECT_EQ(at(1), "one");
  EXPECT_EQ(at(second - 1), "one");
  EXPECT_EQ(at(second), "two");
  EXPECT_EQ(TextOf(reader->GetSharedEventState("module", nullptr)), "two");
  EXPECT_EQ(TextOf(reader->GetSharedEventState("module", NewEvent("unnumbered"))), "two");
  EXPECT_EQ(TextOf(reader->GetSharedEventState("nobody", nullptr)), "none");
  EXPECT_EQ(TextOf(reader->GetSharedEventState("", nullptr)), "none");
}

TEST_F(ExternalModuleServicesTest, AStateWithoutAnEventCountsFromTheNextOne) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  const ModuleServices module = ServicesOf("module");
  EXPECT_EQ(Dispatch(NewEvent("before")), "");
  module->SetSharedEventState("{}", nullptr);
  EXPECT_EQ(Dispatch(NewEvent("after")), "");
  EXPECT_TRUE(listener->WaitForCount(2));
  EXPECT_EQ(TextOf(module->GetSharedEventState("module", listener->Heard()[0])), "none");
  EXPECT_EQ(TextOf(module->GetSharedEventState("module", listener->Heard()[1])), "{}");
}

TEST_F(ExternalModuleServicesTest, APendingStateIsEmptyAndClearingLeavesNone) {
  StartHub();
  const ModuleServices module = ServicesOf("module");
  module->SetSharedEventState("", nullptr);
  EXPECT_EQ(TextOf(module->GetSharedEventState("module", nullptr)), "");
  module->ClearSharedEventStates();
  EXPECT_EQ(TextOf(module->GetSharedEventState("module", nullptr)), "none");
}

TEST_F(ExternalModuleServicesTest, StatesGoWithTheirModule) {
  StartHub();
  const ModuleServices module = ServicesOf("module");
  const ModuleServices reader = ServicesOf("reader");
  module->SetSharedEventState("{}", nullptr);
  EXPECT_EQ(TextOf(reader->GetSharedEventState("module", nullptr)), "{}");
  module->UnregisterExtension();
  EXPECT_EQ(TextOf(reader->GetSharedEventState("module", nullptr)), "none");
}

TEST_F(ExternalModuleServicesTest, WhatIsReadIsACopy) {
  StartHub();
  const ModuleServices module = ServicesOf("module");
  module->SetSharedEventState("text", nullptr);
  *module->GetSharedEventState("module", nullptr) = "changed";
  EXPECT_EQ(TextOf(module->GetSharedEventState("module", nullptr)), "text");
}

TEST_F(ExternalModuleServicesTest, RefusesAStateThatIsTooLong) {
  StartHub();
  const ModuleServices module = ServicesOf("module");
  EXPECT_EQ(
      CodeThrownBy([&] { module->SetSharedEventState(std::string(10'000'000, 'x'), nullptr); }),
      "");
  EXPECT_EQ(
      CodeThrownBy([&] { module->SetSharedEventState(std::string(20'000'000, 'x'), nullptr); }),
      ErrorCodes::kExternalModuleEventDataNotSupported);
  EXPECT_EQ(TextOf(module->GetSharedEventState("module", nullptr)).size(), 10'000'000U);
}

TEST_F(ExternalModuleServicesTest, TellsOthersButNotItsOwnerThatAStateHasChanged) {
  StartHub();
  const auto others = std::make_shared<RecordingListener>();
  const auto own = std::make_shared<RecordingListener>();
  RegisterWith("other", others, EventTypes::kHub, EventSources::kSharedState);
  const auto module = RegisterWith("module", own, EventTypes::kHub, EventSources::kSharedState);
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  module->Services()->SetSharedEventState("{}", nullptr);
  module->Services()->ClearSharedEventStates();
  Finish();
  EXPECT_EQ(own->Count(), 0U);
  ASSERT_EQ(others->Count(), 2U);
  EXPECT_EQ(others->Heard()[0]->GetData()->Get(EventKeys::kStateOwner)->GetString(), "module");
}

}  // namespace
