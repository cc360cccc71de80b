// What a hub lets wait at most, beside numbers of events.

#include <memory>
#include <string>

#include "VelmoraCore/ErrorCodes.h"
#include "unit/core/hub/HubFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::EventHub;
using Velmora::EventHubLimits;
namespace ErrorCodes = Velmora::ErrorCodes;

constexpr std::size_t kLarge = 600'000;  // more than half of a million

// An event whose name says how many bytes it takes.
EventPointer LargeEvent(const std::string& name) {
  Velmora::EventData data;
  data.PutString("text", std::string(kLarge, 'l'));
  return std::make_shared<Velmora::Event>(name, "test.type", "test.source",
                                          std::make_shared<Velmora::EventData>(data));
}

class HubBoundsTest : public HubFixture {
 protected:
  void ExpectWarning(const std::string& message) {
    log.ExpectLine(LogLevel::Warning, "EventHub", message);
  }
};

TEST_F(HubBoundsTest, RefusesEventsOnceThoseThatWaitHoldTooManyBytes) {
  EventHubLimits limits;
  limits.events.bytes = 1'000'000;
  limits.requests.bytes = 1'000'000;
  hub = EventHub::Create(services, limits);
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  EXPECT_EQ(Dispatch(LargeEvent("1")), "");
  EXPECT_EQ(Dispatch(LargeEvent("2")), "");
  EXPECT_EQ(Dispatch(NewEvent("small")), ErrorCodes::kEventHubQueueFull);
  hub->PostReport(NewEvent("report"));
  hub->Post(LargeEvent("3"));
  hub->Post(LargeEvent("4"));
  hub->Post(NewEvent("beyond the reserve"));
  ExpectWarning("2 events were dropped because the queue was full");
  hub->Start();
  EXPECT_TRUE(listener->WaitForCount(4));
  EXPECT_EQ(Dispatch(LargeEvent("5")), "");
  Finish();
  EXPECT_THAT(listener->Names(), ElementsAre("1", "2", "3", "4", "5"));
}

TEST_F(HubBoundsTest, DropsEventsForAModuleOnceThoseThatWaitHoldTooManyBytes) {
  EventHubLimits limits;
  limits.moduleEvents.bytes = 1'000'000;
  ExpectThatASlowModuleMissesTwoOfFive(limits, LargeEvent);
}

TEST_F(HubBoundsTest, DropsResponsesOnceThoseThatWaitHoldTooManyBytes) {
  EventHubLimits limits;
  limits.callbacks.bytes = 1'000'000;
  StartHub(limits);
  const auto gate = std::make_shared<Gate>();
  CallLog answered;
  const auto ask = [&](const std::string& name) {
    const EventPointer question = NewEvent(name);
    EXPECT_FALSE(hub->Dispatch(question, [&answered, gate, name](const EventPointer&) {
      if (name == "1") gate->Pass();
      Add(answered, name);
    }));
    EXPECT_EQ(Dispatch(LargeEvent("answer")->AsResponseTo(*question)), "");
  };
  ask("1");
  gate->AwaitArrivals();
  for (const char* name : {"2", "3", "4", "5"}) ask(name);
  // An event of the hub's own thread comes behind them all.
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  EXPECT_EQ(Dispatch(NewEvent("last")), "");
  EXPECT_TRUE(listener->WaitForCount(1));
  ExpectWarning("2 callbacks were dropped because their queue was full");
  gate->Open();
  Finish();
  EXPECT_THAT(answered.Get(), ElementsAre("1", "2", "3"));
}

TEST_F(HubBoundsTest, AModuleHasNoMoreListenersThanItMay) {
  EventHubLimits limits;
  limits.moduleListeners = 2;
  StartHub(limits);
  const auto module = std::make_shared<RecordingModule>("module");
  const auto listener = std::make_shared<RecordingListener>();
  CallLog codes;
  module->onRegister = [&](const ModuleServices& hubServices) {
    for (const char* type : {"one", "one", "two", "three", "one"}) {
      Add(codes, CodeThrownBy([&] { hubServices->RegisterListener(listener, type, "s"); }));
    }
  };
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return codes.Get().size() == 5; }));
  const char* const full = ErrorCodes::kExternalModuleTooManyListeners;
  EXPECT_THAT(codes.Get(), ElementsAre("", "", "", full, full));
  EXPECT_EQ(CodeThrownBy([&] { module->Services()->RegisterWildcardListener(listener); }), full);
}

// However often it is asked to, a module that is stuck keeps no more listeners than it may.
TEST_F(HubBoundsTest, ListenersThatWaitToReplaceOthersCount) {
  EventHubLimits limits;
  limits.moduleListeners = 3;
  StartHub(limits);
  const auto gate = std::make_shared<Gate>();
  const auto slow = std::make_shared<RecordingListener>([gate](const auto&) { gate->Pass(); });
  const auto module = RegisterWith("module", slow);
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  EXPECT_EQ(Dispatch(NewEvent("1")), "");
  gate->AwaitArrivals();
  const auto next = std::make_shared<RecordingListener>();
  const auto replace = [&] {
    return CodeThrownBy(
        [&] { module->Services()->RegisterListener(next, "test.type", "test.source"); });
  };
  EXPECT_EQ(replace(), "");
  EXPECT_EQ(replace(), "");
  EXPECT_EQ(replace(), ErrorCodes::kExternalModuleTooManyListeners);
  gate->Open();
  EXPECT_TRUE(WaitUntil([&] { return next->Calls().size() == 3; }));
  EXPECT_EQ(replace(), "") << "those that were replaced count no longer";
  Finish();
}

TEST_F(HubBoundsTest, NoMoreCallbacksWaitForAModuleThatIsStuckThanMayWaitAtAll) {
  EventHubLimits limits;
  limits.callbacks.items = 2;
  StartHub(limits);
  const auto gate = std::make_shared<Gate>();
  const auto module = std::make_shared<RecordingModule>("stuck");
  module->onRegister = [gate](const ModuleServices&) { gate->Pass(); };
  EXPECT_EQ(Register(module), "");
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  CallLog calls;
  for (const char* name : {"1", "2", "3", "4", "5"}) {
    hub->PostAndFollow(NewEvent(name), [&calls, name] { Add(calls, name); });
  }
  EXPECT_TRUE(listener->WaitForCount(5));
  EXPECT_THAT(calls.Get(), IsEmpty());
  ExpectWarning("3 callbacks were dropped because their queue was full");
  gate->Open();
  EXPECT_TRUE(WaitUntil([&] { return calls.Get().size() == 2; }));
  hub->PostAndFollow(NewEvent("6"), [&calls] { Add(calls, "6"); });
  Finish();
  EXPECT_THAT(calls.Get(), ElementsAre("1", "2", "6"));
}

}  // namespace
