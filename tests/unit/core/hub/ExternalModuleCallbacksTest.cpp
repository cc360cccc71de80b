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
using Velmora::SdkError;

class ExternalModuleCallbacksTest : public HubFixture {};

TEST_F(ExternalModuleCallbacksTest, ASlowListenerDelaysNobodyElse) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const auto slow = std::make_shared<RecordingListener>([gate](const auto&) { gate->Pass(); });
  const auto quick = std::make_shared<RecordingListener>();
  RegisterWith("slow", slow);
  RegisterWith("quick", quick);
  for (const char* name : {"1", "2", "3"}) EXPECT_EQ(Dispatch(NewEvent(name)), "");
  gate->AwaitArrivals();
  EXPECT_TRUE(quick->WaitForCount(3));
  EXPECT_THAT(slow->Names(), ElementsAre("1"));
  gate->Open();
  Finish();
  EXPECT_THAT(slow->Names(), ElementsAre("1", "2", "3"));
}

TEST_F(ExternalModuleCallbacksTest, AListenerThatThrowsIsLoggedOnceAndTheModuleIsTold) {
  StartHub();
  const auto throwing = std::make_shared<RecordingListener>([](const EventPointer& event) {
    if (event->GetName() == "sdk error") {
      throw SdkError("some.code", "some message", Velmora::DebugInfo("src/x", 1));
    }
    if (event->GetName() == "exception") throw std::runtime_error("broken");
    if (event->GetName() == "number") throw 5;
  });
  const auto other = std::make_shared<RecordingListener>();
  const auto module = RegisterWith("throwing", throwing);
  RegisterWith("other", other);
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module throwing: Hear failed: some.code: some message");
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module throwing: Hear failed: std.exception: broken");
  log.ExpectLine(LogLevel::Error, "EventHub",
                 testing::StartsWith("module throwing: Hear failed: std.exception: "));
  for (const char* name : {"sdk error", "exception", "number", "fine"}) {
    EXPECT_EQ(Dispatch(NewEvent(name)), "");
  }
  Finish();
  EXPECT_THAT(module->Calls(), ElementsAre("register", "error some.code", "error std.exception",
                                           "error std.exception", "unregister"));
  EXPECT_THAT(throwing->Names(), ElementsAre("sdk error", "exception", "number", "fine"));
  EXPECT_EQ(other->Count(), 4U);
}

TEST_F(ExternalModuleCallbacksTest, AModuleThatThrowsEverywhereHarmsNobody) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("broken");
  module->onRegister = [](const ModuleServices&) { throw std::runtime_error("at register"); };
  module->onError = [] { throw std::runtime_error("at error"); };
  module->onUnregister = [] { throw std::runtime_error("at unregister"); };
  const auto other = std::make_shared<RecordingListener>();
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module broken: OnRegister failed: std.exception: at register");
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module broken: OnUnexpectedError failed: std.exception: at error");
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module broken: OnUnregister failed: std.exception: at unregister");
  EXPECT_EQ(Register(module), "");
  RegisterWith("other", other);
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  Finish();
  EXPECT_EQ(other->Count(), 1U);
}

TEST_F(ExternalModuleCallbacksTest, NothingFollowsTheLastCallEvenWhenItThrows) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("broken");
  module->onUnregister = [] { throw std::runtime_error("at unregister"); };
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module broken: OnUnregister failed: std.exception: at unregister");
  EXPECT_EQ(Register(module), "");
  Finish();
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(ExternalModuleCallbacksTest, AListenerMayDispatch) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>([this](const EventPointer& event) {
    if (event->GetNumber() < 100) {
      EXPECT_EQ(Dispatch(NewEvent("next")), "");
    }
  });
  RegisterWith("chain", listener);
  EXPECT_EQ(Dispatch(NewEvent("first")), "");
  EXPECT_TRUE(listener->WaitForCount(100));
  Finish();
  EXPECT_EQ(listener->Count(), 100U);
}

TEST_F(ExternalModuleCallbacksTest, AListenerMayRegisterListenersAndModules) {
  StartHub();
  const auto inner = std::make_shared<RecordingListener>();
  const auto later = std::make_shared<RecordingListener>();
  std::shared_ptr<RecordingModule> module;
  const auto outer = std::make_shared<RecordingListener>([&](const EventPointer& event) {
    if (event->GetName() != "first") return;
    module->Services()->RegisterWildcardListener(inner);
    RegisterWith("later", later);
  });
  module = RegisterWith("module", outer);
  EXPECT_EQ(Dispatch(NewEvent("first")), "");
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return !inner->Calls().empty(); }));
  EXPECT_EQ(Dispatch(NewEvent("second")), "");
  Finish();
  EXPECT_THAT(outer->Names(), ElementsAre("first", "second"));
  EXPECT_THAT(inner->Calls(), ElementsAre("registered", "heard second", "unregistered"));
  EXPECT_THAT(later->Names(), ElementsAre("second"));
}

TEST_F(ExternalModuleCallbacksTest, AListenerForTheSamePairReplacesTheOneBefore) {
  StartHub();
  const auto before = std::make_shared<RecordingListener>();
  const auto after = std::make_shared<RecordingListener>();
  const auto elsewhere = std::make_shared<RecordingListener>();
  const auto module = RegisterWith("module", before);
  RegisterWith("elsewhere", elsewhere);
  EXPECT_EQ(Dispatch(NewEvent("first")), "");
  EXPECT_TRUE(before->WaitForCount(1));
  module->Services()->RegisterListener(after, "test.type", "test.source");
  EXPECT_EQ(Dispatch(NewEvent("second")), "");
  Finish();
  EXPECT_THAT(before->Calls(), ElementsAre("registered", "heard first", "unregistered"));
  EXPECT_THAT(after->Calls(), ElementsAre("registered", "heard second", "unregistered"));
  EXPECT_THAT(elsewhere->Names(), ElementsAre("first", "second"));
}

TEST_F(ExternalModuleCallbacksTest, NoEventFallsBetweenAListenerAndTheOneThatReplacesIt) {
  constexpr int kEvents = 2'000;
  StartHub();
  std::vector<std::shared_ptr<RecordingListener>> listeners;
  listeners.push_back(std::make_shared<RecordingListener>());
  const auto module = RegisterWith("module", listeners.front());
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  std::thread dispatching([this] {
    for (int count = 0; count < kEvents; ++count) EXPECT_EQ(Dispatch(NewEvent("event")), "");
  });
  for (int count = 0; count < 50; ++count) {
    listeners.push_back(std::make_shared<RecordingListener>());
    module->Services()->RegisterListener(listeners.back(), "test.type", "test.source");
    // Ever later in the course of the events.
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return hub->AcceptedCount() >= count * 40; }));
  }
  dispatching.join();
  Finish();
  std::int64_t next = 1;
  for (const auto& listener : listeners) {
    EXPECT_EQ(listener->Calls().back(), "unregistered");
    for (const EventPointer& event : listener->Heard()) EXPECT_EQ(event->GetNumber(), next++);
  }
  EXPECT_EQ(next, kEvents + 1);
}

TEST_F(ExternalModuleCallbacksTest, OneModuleHearsForTheTypeFirstThenForEverything) {
  StartHub();
  CallLog order;
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [&](const ModuleServices& moduleServices) {
    for (const char* name : {"wildcard 1", "wildcard 2"}) {
      moduleServices->RegisterWildcardListener(std::make_shared<RecordingListener>(
          [&order, name](const EventPointer&) { Add(order, name); }));
    }
    moduleServices->RegisterListener(
        std::make_shared<RecordingListener>([&](const EventPointer&) { Add(order, "typed"); }),
        "test.type", "test.source");
  };
  EXPECT_EQ(Register(module), "");
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  Finish();
  EXPECT_THAT(order.Get(), ElementsAre("typed", "wildcard 1", "wildcard 2"));
}

}  // namespace
