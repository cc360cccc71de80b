#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"
#include "unit/core/hub/HubFixture.h"

namespace {

using testing::ElementsAre;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
namespace ErrorCodes = Velmora::ErrorCodes;

class ExternalModuleLeavingTest : public HubFixture {};

TEST_F(ExternalModuleLeavingTest, NothingIsDeliveredAfterwards) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const auto listener = std::make_shared<RecordingListener>([gate](const auto&) { gate->Pass(); });
  const auto module = RegisterWith("module", listener);
  for (const char* name : {"1", "2", "3"}) EXPECT_EQ(Dispatch(NewEvent(name)), "");
  gate->AwaitArrivals();
  module->Services()->UnregisterExtension();
  EXPECT_EQ(Dispatch(NewEvent("4")), "");
  gate->Open();
  EXPECT_TRUE(module->WaitForCalls({"register", "unregister"}));
  Finish();
  EXPECT_THAT(listener->Calls(), ElementsAre("registered", "heard 1", "unregistered"));
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(ExternalModuleLeavingTest, AListenerMayUnregisterItsModule) {
  StartHub();
  std::shared_ptr<RecordingModule> module;
  const auto listener = std::make_shared<RecordingListener>(
      [&](const EventPointer&) { module->Services()->UnregisterExtension(); });
  const auto second = std::make_shared<RecordingListener>();
  module = std::make_shared<RecordingModule>("module");
  module->onRegister = [&](const ModuleServices& moduleServices) {
    moduleServices->RegisterListener(listener, "test.type", "test.source");
    moduleServices->RegisterWildcardListener(second);
  };
  EXPECT_EQ(Register(module), "");
  EXPECT_EQ(Dispatch(NewEvent("1")), "");
  EXPECT_EQ(Dispatch(NewEvent("2")), "");
  EXPECT_TRUE(module->WaitForCalls({"register", "unregister"}));
  EXPECT_THAT(listener->Calls(), ElementsAre("registered", "heard 1", "unregistered"));
  EXPECT_THAT(second->Calls(), ElementsAre("registered", "unregistered"));
}

TEST_F(ExternalModuleLeavingTest, AModuleMayLeaveWhileItIsRegistered) {
  StartHub();
  CallLog calls;
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [](const ModuleServices& moduleServices) {
    moduleServices->UnregisterExtension();
  };
  EXPECT_EQ(Register(module), "");
  hub->PostAndFollow(NewEvent("follow"), [&] { Add(calls, "done"); });
  EXPECT_TRUE(module->WaitForCalls({"register", "unregister"}));
  EXPECT_TRUE(WaitUntil([&] { return calls.Get().size() == 1; }));
}

TEST_F(ExternalModuleLeavingTest, UnregisteringTwiceDoesNothing) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("module");
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  module->Services()->UnregisterExtension();
  module->Services()->UnregisterExtension();
  EXPECT_TRUE(module->WaitForCalls({"register", "unregister"}));
  Finish();
  module->Services()->UnregisterExtension();
  hub = nullptr;
  module->Services()->UnregisterExtension();
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(ExternalModuleLeavingTest, ServicesRefuseAfterwards) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("module");
  const auto listener = std::make_shared<RecordingListener>();
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  const ModuleServices moduleServices = module->Services();
  moduleServices->UnregisterExtension();
  const char* const code = ErrorCodes::kExternalModuleNotRegistered;
  EXPECT_EQ(CodeThrownBy([&] { moduleServices->RegisterListener(listener, "t", "s"); }), code);
  EXPECT_EQ(CodeThrownBy([&] { moduleServices->RegisterWildcardListener(listener); }), code);
  EXPECT_EQ(CodeThrownBy([&] { moduleServices->SetSharedEventState("{}", nullptr); }), code);
  EXPECT_EQ(CodeThrownBy([&] { moduleServices->ClearSharedEventStates(); }), code);
  EXPECT_EQ(CodeThrownBy([&] { moduleServices->GetSharedEventState("x", nullptr); }), code);
  hub = nullptr;
  EXPECT_EQ(CodeThrownBy([&] { moduleServices->GetSharedEventState("x", nullptr); }), code);
}

TEST_F(ExternalModuleLeavingTest, TheSameModuleMayComeBackAtOnce) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const auto listener = std::make_shared<RecordingListener>([gate](const EventPointer& event) {
    if (event->GetName() == "first") gate->Pass();
  });
  const auto module = RegisterWith("module", listener);
  EXPECT_EQ(Dispatch(NewEvent("first")), "");
  gate->AwaitArrivals();
  module->Services()->UnregisterExtension();
  EXPECT_EQ(Register(module), "");
  EXPECT_EQ(Register(module), ErrorCodes::kExternalModuleDuplicateModuleName);
  EXPECT_EQ(Dispatch(NewEvent("second")), "");
  EXPECT_THAT(module->Calls(), ElementsAre("register")) << "its former life has not ended";
  gate->Open();
  EXPECT_TRUE(listener->WaitForCount(2));
  Finish();
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister", "register", "unregister"));
  EXPECT_THAT(listener->Calls(), ElementsAre("registered", "heard first", "unregistered",
                                             "registered", "heard second", "unregistered"));
}

TEST_F(ExternalModuleLeavingTest, AModuleMayComeBackManyTimes) {
  StartHub();
  for (int round = 0; round < 50; ++round) {
    const auto module = std::make_shared<RecordingModule>("module");
    EXPECT_EQ(Register(module), "");
    EXPECT_TRUE(module->WaitForCalls({"register"}));
    module->Services()->UnregisterExtension();
  }
}

TEST_F(ExternalModuleLeavingTest, AModuleMayComeBackFromItsLastCall) {
  StartHub();
  const auto successor = std::make_shared<RecordingModule>("module");
  const auto module = std::make_shared<RecordingModule>("module");
  module->onUnregister = [&] { EXPECT_EQ(Register(successor), ""); };
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  module->Services()->UnregisterExtension();
  EXPECT_TRUE(successor->WaitForCalls({"register"}));
}

TEST_F(ExternalModuleLeavingTest, ASuccessorsStateIsItsOwn) {
  constexpr int kRounds = 100;
  constexpr int kThreads = 4;
  constexpr std::int64_t kLaterThanAll = 1'000'000'000;
  log.AllowLines(LogLevel::Warning, "EventHub", testing::EndsWith("because the queue was full"));
  StartHub();
  const auto reader = std::make_shared<RecordingModule>("reader");
  EXPECT_EQ(Register(reader), "");
  EXPECT_TRUE(reader->WaitForCalls({"register"}));
  for (int round = 0; round < kRounds; ++round) {
    const auto former = std::make_shared<RecordingModule>("module");
    EXPECT_EQ(Register(former), "");
    EXPECT_TRUE(former->WaitForCalls({"register"}));
    // Go on setting states, off the module's thread, until they are told that it has left.
    std::vector<std::thread> setting;
    std::atomic<int> begun{0};
    for (int thread = 0; thread < kThreads; ++thread) {
      setting.emplace_back([&former, &begun] {
        const auto set = [&former] { former->Services()->SetSharedEventState("former", nullptr); };
        EXPECT_EQ(CodeThrownBy(set), "");
        ++begun;
        while (CodeThrownBy(set).empty()) {
        }
      });
    }
    EXPECT_TRUE(WaitUntil([&] { return begun == kThreads; }));
    const auto successor = std::make_shared<RecordingModule>("module");
    successor->onRegister = [](const ModuleServices& moduleServices) {
      moduleServices->SetSharedEventState("successor", NewEvent("")->WithNumber(kLaterThanAll));
    };
    former->Services()->UnregisterExtension();
    EXPECT_EQ(Register(successor), "");
    EXPECT_TRUE(successor->WaitForCalls({"register"}));
    for (std::thread& thread : setting) thread.join();
    const auto state = [&] { return reader->Services()->GetSharedEventState("module", nullptr); };
    EXPECT_TRUE(WaitUntil([&] { return state() != nullptr; }));
    ASSERT_EQ(*state(), "successor");
    const EventPointer before = NewEvent("")->WithNumber(kLaterThanAll - 1);
    ASSERT_EQ(reader->Services()->GetSharedEventState("module", before), nullptr)
        << "a state of the former module came late";
    successor->Services()->UnregisterExtension();
    EXPECT_TRUE(successor->WaitForCalls({"register", "unregister"}));
  }
}

TEST_F(ExternalModuleLeavingTest, AModuleIsReleasedWhenItHasLeft) {
  StartHub();
  auto module = std::make_shared<RecordingModule>("module");
  const std::weak_ptr<RecordingModule> watch = module;
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  module->Services()->UnregisterExtension();
  module = nullptr;
  EXPECT_TRUE(WaitUntil([&] { return watch.expired(); }));
}

TEST_F(ExternalModuleLeavingTest, ComingAndGoingUnderLoadIsClean) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 20;
  StartHub();
  const auto pace = std::make_shared<RecordingListener>();
  RegisterWith("pace", pace);
  std::atomic<bool> isOver{false};
  std::thread dispatching([&] {
    for (std::size_t sent = 0; !isOver; ++sent) {
      EXPECT_EQ(Dispatch(NewEvent("event")), "");
      EXPECT_TRUE(WaitUntil([&] { return pace->Count() + 100 > sent; }));
    }
  });
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread] {
      for (int round = 0; round < kRounds; ++round) {
        const auto listener = std::make_shared<RecordingListener>();
        const auto module = RegisterWith("module " + std::to_string(thread), listener);
        EXPECT_TRUE(listener->WaitForCount(1));
        module->Services()->UnregisterExtension();
        EXPECT_TRUE(module->WaitForCalls({"register", "unregister"}));
        EXPECT_EQ(listener->Calls().back(), "unregistered");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  isOver = true;
  dispatching.join();
}

}  // namespace
