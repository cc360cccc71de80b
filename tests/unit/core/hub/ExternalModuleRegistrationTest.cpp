#include <atomic>
#include <memory>
#include <stdexcept>
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

class NamelessModule final : public Velmora::Object,
                             public virtual Velmora::ExternalModuleInterface {
 public:
  std::string GetModuleName() override { throw std::runtime_error("no name"); }
  std::string GetModuleVersion() override { return ""; }
  void OnRegister(const ModuleServices&) override { ADD_FAILURE() << "was registered"; }
  void OnUnexpectedError(Velmora::SdkError&) override {}
  void OnUnregister() override { ADD_FAILURE() << "was unregistered"; }
};

class ExternalModuleRegistrationTest : public HubFixture {};

TEST_F(ExternalModuleRegistrationTest, TellsTheModuleOnItsOwnThread) {
  StartHub();
  TestSupport::Guarded<std::thread::id> thread;
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [&](const ModuleServices& moduleServices) {
    EXPECT_NE(moduleServices, nullptr);
    thread.Set(std::this_thread::get_id());
  };
  EXPECT_EQ(Register(module), "");
  Finish();
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
  EXPECT_NE(thread.Get(), std::this_thread::get_id());
}

TEST_F(ExternalModuleRegistrationTest, RefusesBadNames) {
  StartHub();
  EXPECT_EQ(Register(nullptr), ErrorCodes::kExternalModuleBadModuleName);
  for (const std::string& name : {std::string(), std::string("  "), std::string("a\nb"),
                                  std::string("\xFF"), std::string(256, 'x')}) {
    const auto module = std::make_shared<RecordingModule>(name);
    EXPECT_EQ(Register(module), ErrorCodes::kExternalModuleBadModuleName);
    EXPECT_THAT(module->Calls(), ElementsAre());
  }
}

TEST_F(ExternalModuleRegistrationTest, RefusesAModuleThatCannotTellItsName) {
  StartHub();
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "a module could not tell its name: std.exception: no name");
  EXPECT_EQ(Register(std::make_shared<NamelessModule>()), ErrorCodes::kExternalModuleBadModuleName);
}

TEST_F(ExternalModuleRegistrationTest, RefusesANameThatIsTaken) {
  StartHub();
  const auto first = std::make_shared<RecordingModule>("module");
  const auto second = std::make_shared<RecordingModule>("module");
  const auto other = std::make_shared<RecordingModule>("Module");
  EXPECT_EQ(Register(first), "");
  EXPECT_EQ(Register(second), ErrorCodes::kExternalModuleDuplicateModuleName);
  EXPECT_EQ(Register(first), ErrorCodes::kExternalModuleDuplicateModuleName);
  EXPECT_EQ(Register(other), "");
  Finish();
  EXPECT_THAT(first->Calls(), ElementsAre("register", "unregister"));
  EXPECT_THAT(second->Calls(), ElementsAre());
  EXPECT_THAT(other->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(ExternalModuleRegistrationTest, WorksFromManyThreadsAtOnce) {
  constexpr int kThreads = 8;
  constexpr int kModulesPerThread = 5;
  StartHub();
  std::vector<std::shared_ptr<RecordingListener>> listeners;
  for (int count = 0; count < kThreads * kModulesPerThread; ++count) {
    listeners.push_back(std::make_shared<RecordingListener>());
  }
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int count = 0; count < kModulesPerThread; ++count) {
        const int index = thread * kModulesPerThread + count;
        RegisterWith("module " + std::to_string(index), listeners[static_cast<std::size_t>(index)]);
        if (Register(std::make_shared<RecordingModule>("the one")) != "") ++refused;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(refused, kThreads * kModulesPerThread - 1);
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  Finish();
  for (const auto& listener : listeners) {
    EXPECT_THAT(listener->Calls(), ElementsAre("registered", "heard event", "unregistered"));
  }
}

TEST_F(ExternalModuleRegistrationTest, WhoComesWhileTheHubIsDisposedIsEitherRefusedOrTold) {
  constexpr int kRounds = 50;
  constexpr int kThreads = 4;
  for (int round = 0; round < kRounds; ++round) {
    StartHub();
    std::vector<std::shared_ptr<RecordingModule>> modules;
    std::vector<std::string> codes(kThreads);
    Gate gate;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
      modules.push_back(std::make_shared<RecordingModule>("module " + std::to_string(thread)));
      threads.emplace_back([&, thread] {
        gate.Pass();
        codes[thread] = Register(modules[thread]);
      });
    }
    gate.AwaitArrivals(kThreads);
    gate.Open();
    hub->Dispose(kLongEnough);
    // Those that were accepted have had all their calls by now.
    for (const auto& module : modules) {
      EXPECT_THAT(module->Calls(),
                  testing::AnyOf(ElementsAre(), ElementsAre("register", "unregister")));
    }
    for (std::thread& thread : threads) thread.join();
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
      if (codes[thread].empty()) {
        EXPECT_THAT(modules[thread]->Calls(), ElementsAre("register", "unregister"));
      } else {
        EXPECT_EQ(codes[thread], ErrorCodes::kEventHubDisposed);
        EXPECT_THAT(modules[thread]->Calls(), ElementsAre());
      }
    }
  }
}

TEST_F(ExternalModuleRegistrationTest, EventsAfterTheRegistrationReachTheListenersThatItMakes) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const auto listener = std::make_shared<RecordingListener>();
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [&](const ModuleServices& moduleServices) {
    gate->Pass();
    moduleServices->RegisterListener(listener, "test.type", "test.source");
  };
  EXPECT_EQ(Dispatch(NewEvent("before")), "");
  EXPECT_EQ(Register(module), "");
  gate->AwaitArrivals();
  EXPECT_EQ(Dispatch(NewEvent("meanwhile")), "");
  EXPECT_EQ(Dispatch(NewEvent("another", "other.type")), "");
  gate->Open();
  EXPECT_TRUE(listener->WaitForCount(1));
  EXPECT_EQ(Dispatch(NewEvent("after")), "");
  Finish();
  EXPECT_THAT(listener->Calls(),
              ElementsAre("registered", "heard meanwhile", "heard after", "unregistered"));
}

TEST_F(ExternalModuleRegistrationTest, AModuleMayRegisterAnotherWhileItIsRegistered) {
  StartHub();
  const auto inner = std::make_shared<RecordingModule>("inner");
  const auto outer = std::make_shared<RecordingModule>("outer");
  outer->onRegister = [&](const ModuleServices&) { EXPECT_EQ(Register(inner), ""); };
  EXPECT_EQ(Register(outer), "");
  EXPECT_TRUE(inner->WaitForCalls({"register"}));
  Finish();
  EXPECT_THAT(inner->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(ExternalModuleRegistrationTest, FollowingWaitsForTheModulesRegisteredBefore) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  CallLog calls;
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [&](const ModuleServices&) {
    gate->Pass();
    Add(calls, "registered");
  };
  EXPECT_EQ(Register(module), "");
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("quick", listener);
  hub->PostAndFollow(NewEvent("follow"), [&] { Add(calls, "done"); });
  gate->AwaitArrivals();
  EXPECT_TRUE(listener->WaitForCount(1)) << "the event itself waits for nobody";
  EXPECT_THAT(calls.Get(), ElementsAre());
  gate->Open();
  Finish();
  EXPECT_THAT(calls.Get(), ElementsAre("registered", "done"));
}

}  // namespace
