#include <chrono>
#include <cmath>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "hub/EventHub.h"
#include "support/ManualClock.h"
#include "unit/core/hub/HubFixture.h"

namespace {

using testing::ElementsAre;
using TestSupport::LogLevel;
using Velmora::Event;
using Velmora::EventData;
using Velmora::EventHub;
using Velmora::Variant;
namespace ErrorCodes = Velmora::ErrorCodes;

class EventHubTest : public HubFixture {};

TEST_F(EventHubTest, NumbersEventsFromOneInOrder) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  const EventPointer event = NewEvent("first");
  EXPECT_EQ(Dispatch(event), "");
  EXPECT_EQ(Dispatch(NewEvent("second")), "");
  EXPECT_EQ(Dispatch(event), "");
  Finish();
  ASSERT_THAT(listener->Names(), ElementsAre("first", "second", "first"));
  EXPECT_EQ(listener->Heard()[0]->GetNumber(), 1);
  EXPECT_EQ(listener->Heard()[1]->GetNumber(), 2);
  EXPECT_EQ(listener->Heard()[2]->GetNumber(), 3);
  EXPECT_EQ(listener->Heard()[0]->GetId(), event->GetId());
  EXPECT_EQ(event->GetNumber(), 0) << "the event that was passed in stays as it was";
}

TEST_F(EventHubTest, KeepsTheOrderOfEveryDispatchingThread) {
  constexpr int kThreads = 4;
  constexpr int kEvents = 500;
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread] {
      for (int event = 0; event < kEvents; ++event) {
        EXPECT_EQ(Dispatch(NewEvent(std::to_string(thread * kEvents + event))), "");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  Finish();
  const std::vector<EventPointer> heard = listener->Heard();
  ASSERT_EQ(heard.size(), static_cast<std::size_t>(kThreads * kEvents));
  std::vector<int> next(kThreads, 0);
  for (std::size_t index = 0; index < heard.size(); ++index) {
    EXPECT_EQ(heard[index]->GetNumber(), static_cast<std::int64_t>(index) + 1);
    const int name = std::stoi(heard[index]->GetName());
    EXPECT_EQ(name % kEvents, next[static_cast<std::size_t>(name / kEvents)]++);
  }
}

TEST_F(EventHubTest, ListenersHearTheirTypeAndSourceOnly) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener, "cart", "app");
  for (const auto& [type, source] : std::vector<std::pair<std::string, std::string>>{
           {"cart", "app"}, {"cart", "web"}, {"Cart", "app"}, {"car", "tapp"}, {"app", "cart"}}) {
    EXPECT_EQ(Dispatch(NewEvent(type + "/" + source, type, source)), "");
  }
  Finish();
  EXPECT_THAT(listener->Names(), ElementsAre("cart/app"));
}

TEST_F(EventHubTest, WildcardListenersHearEverything) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  const auto module = std::make_shared<RecordingModule>("listening");
  module->onRegister = [&](const ModuleServices& moduleServices) {
    moduleServices->RegisterWildcardListener(listener);
  };
  EXPECT_EQ(Register(module), "");
  EXPECT_EQ(Dispatch(NewEvent("one", "a", "b")), "");
  EXPECT_EQ(Dispatch(NewEvent("two", "c", "d")), "");
  Finish();
  EXPECT_THAT(listener->Names(), ElementsAre("one", "two"));
}

TEST_F(EventHubTest, RefusesWhatIsNoEvent) {
  StartHub();
  EventData nan;
  nan.Put("value", Variant::FromDouble(std::nan("")));
  EXPECT_EQ(Dispatch(nullptr), ErrorCodes::kExternalModuleEventWasNull);
  EXPECT_EQ(Dispatch(NewEvent("", "", "s")), ErrorCodes::kExternalModuleEventTypeNotSupported);
  EXPECT_EQ(Dispatch(NewEvent("", "a b", "s")), ErrorCodes::kExternalModuleEventTypeNotSupported);
  EXPECT_EQ(Dispatch(NewEvent("", "t", "")), ErrorCodes::kExternalModuleEventSourceNotSupported);
  EXPECT_EQ(Dispatch(NewEvent("", "t", std::string(256, 's'))),
            ErrorCodes::kExternalModuleEventSourceNotSupported);
  EXPECT_EQ(Dispatch(std::make_shared<Event>("", "t", "s", std::make_shared<EventData>(nan))),
            ErrorCodes::kExternalModuleEventDataNotSupported);
  EXPECT_EQ(hub->AcceptedCount(), 0);
}

TEST_F(EventHubTest, DeliversDataOfAnySize) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  EventData data;
  data.PutString("huge", std::string(10'000'000, 'x'));
  data.PutString("zero", std::string("a\0b", 3));
  EXPECT_EQ(Dispatch(std::make_shared<Event>("", "test.type", "test.source",
                                             std::make_shared<EventData>(data))),
            "");
  Finish();
  ASSERT_EQ(listener->Count(), 1U);
  EXPECT_EQ(listener->Heard()[0]->GetData()->Get("huge")->GetString().size(), 10'000'000U);
  EXPECT_EQ(listener->Heard()[0]->GetData()->Get("zero")->GetString().size(), 3U);
}

TEST_F(EventHubTest, HandlesEventsDispatchedBeforeItStarts) {
  hub = EventHub::Create(services);
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  EXPECT_EQ(Dispatch(NewEvent("early")), "");
  hub->Start();
  hub->Start();
  Finish();
  EXPECT_THAT(listener->Names(), ElementsAre("early"));
}

TEST_F(EventHubTest, RefusesEventsBeyondItsLimitAndCountsItsOwn) {
  Velmora::EventHubLimits limits;
  limits.events.items = 3;
  limits.requests.items = 0;
  hub = EventHub::Create(services, limits);
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  for (const char* name : {"1", "2", "3"}) EXPECT_EQ(Dispatch(NewEvent(name)), "");
  EXPECT_EQ(Dispatch(NewEvent("4")), ErrorCodes::kEventHubQueueFull);
  hub->Post(NewEvent("5"));
  hub->Post(NewEvent("6"));
  log.ExpectLine(LogLevel::Warning, "EventHub", "2 events were dropped because the queue was full");
  hub->Start();
  EXPECT_TRUE(listener->WaitForCount(3));
  EXPECT_EQ(Dispatch(NewEvent("7")), "");
  Finish();
  EXPECT_THAT(listener->Names(), ElementsAre("1", "2", "3", "7"));
  EXPECT_EQ(listener->Heard()[3]->GetNumber(), 4);
}

TEST_F(EventHubTest, AFloodLeavesRoomForTheCoresOwnRequests) {
  Velmora::EventHubLimits limits;
  limits.events.items = 3;
  limits.requests.items = 2;
  hub = EventHub::Create(services, limits);
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  for (const char* name : {"1", "2", "3"}) EXPECT_EQ(Dispatch(NewEvent(name)), "");
  EXPECT_EQ(Dispatch(NewEvent("flood")), ErrorCodes::kEventHubQueueFull);
  hub->PostReport(NewEvent("report"));
  CallLog calls;
  hub->Post(NewEvent("4"));
  hub->PostAndFollow(NewEvent("5"), [&] { Add(calls, "done"); });
  hub->Post(NewEvent("beyond the reserve"));
  EXPECT_EQ(Dispatch(NewEvent("flood")), ErrorCodes::kEventHubQueueFull);
  log.ExpectLine(LogLevel::Warning, "EventHub", "2 events were dropped because the queue was full");
  hub->Start();
  Finish();
  EXPECT_THAT(listener->Names(), ElementsAre("1", "2", "3", "4", "5"));
  EXPECT_THAT(calls.Get(), ElementsAre("done"));
}

TEST_F(EventHubTest, TakesNoModulesOfItsOwnOnceItHasStarted) {
  class OwnModule final : public Velmora::HubModule {
   public:
    std::string GetName() const override { return "own"; }
    void Attach(Velmora::HubContext& /*context*/) override {}
  };
  hub = EventHub::Create(services);
  hub->AddModule(std::make_unique<OwnModule>());
  const auto add = [this] { hub->AddModule(std::make_unique<OwnModule>()); };
  EXPECT_EQ(CodeThrownBy(add), ErrorCodes::kExternalModuleDuplicateModuleName);
  hub->Start();
  EXPECT_EQ(CodeThrownBy(add), ErrorCodes::kEventHubAlreadyStarted);
  Finish();
  EXPECT_EQ(CodeThrownBy(add), ErrorCodes::kEventHubDisposed);
}

TEST_F(EventHubTest, BringsAModulesWorkHomeToItsThreadAndCountsItForNoEvent) {
  class WorkingModule final : public Velmora::HubModule {
   public:
    explicit WorkingModule(Velmora::HubContext::Poster& wayHome) : wayHome_(wayHome) {}
    std::string GetName() const override { return "working"; }
    void Attach(Velmora::HubContext& context) override { wayHome_ = context.WayHome(); }

   private:
    Velmora::HubContext::Poster& wayHome_;
  };
  Velmora::HubContext::Poster wayHome;
  const auto listener = std::make_shared<RecordingListener>();
  hub = EventHub::Create(services);
  hub->AddModule(std::make_unique<WorkingModule>(wayHome));
  hub->Start();
  RegisterWith("listening", listener);
  TestSupport::Guarded<std::thread::id> homeThread;
  wayHome([&] { homeThread.Set(std::this_thread::get_id()); });
  log.ExpectLine(LogLevel::Error, "EventHub", "a callback failed: std.exception: spilt");
  wayHome([] { throw std::runtime_error("spilt"); });
  EXPECT_EQ(Dispatch(NewEvent("first")), "");
  Finish();
  EXPECT_NE(homeThread.Get(), std::thread::id());
  EXPECT_NE(homeThread.Get(), std::this_thread::get_id());
  EXPECT_EQ(listener->Heard().at(0)->GetNumber(), 1);

  bool isCalled = false;
  wayHome([&] { isCalled = true; });
  hub = nullptr;
  wayHome([&] { isCalled = true; });
  EXPECT_FALSE(isCalled);
}

TEST_F(EventHubTest, AModuleOfItsOwnMayHearEverythingAfterThoseWhoListenToOneTopic) {
  class HearingModule final : public Velmora::HubModule {
   public:
    explicit HearingModule(CallLog& calls) : calls_(calls) {}
    std::string GetName() const override { return "hearing"; }
    void Attach(Velmora::HubContext& context) override {
      context.ListenToAll([this](const EventPointer& event) {
        Add(calls_, "all: " + event->GetName());
        if (event->GetName() == "bad") throw std::runtime_error("spilt");
      });
      context.Listen(
          "a", "b", [this](const EventPointer& event) { Add(calls_, "one: " + event->GetName()); });
    }

   private:
    CallLog& calls_;
  };
  CallLog calls;
  hub = EventHub::Create(services);
  hub->AddModule(std::make_unique<HearingModule>(calls));
  hub->Start();
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module hearing: event 2 failed: std.exception: spilt");
  EXPECT_EQ(Dispatch(NewEvent("first", "a", "b")), "");
  EXPECT_EQ(Dispatch(NewEvent("bad", "c", "d")), "");
  EXPECT_EQ(Dispatch(NewEvent("last", "a", "d")), "");
  Finish();
  EXPECT_THAT(calls.Get(), ElementsAre("one: first", "all: first", "all: bad", "all: last"));
}

// Lends out the context that it is given.
class LendingModule final : public Velmora::HubModule {
 public:
  explicit LendingModule(Velmora::HubContext*& context) : context_(context) {}
  std::string GetName() const override { return "lending"; }
  void Attach(Velmora::HubContext& context) override { context_ = &context; }

 private:
  Velmora::HubContext*& context_;
};

TEST_F(EventHubTest, GivesModulesTheClockThatItWasGiven) {
  const auto clock = std::make_shared<TestSupport::ManualClock>();
  Velmora::HubContext* context = nullptr;
  hub = EventHub::Create(services, {}, clock);
  hub->AddModule(std::make_unique<LendingModule>(context));
  EXPECT_EQ(&context->GetClock(), clock.get());
}

TEST_F(EventHubTest, GivesModulesTheSystemsClockWhichStopsWithTheHub) {
  Velmora::HubContext* context = nullptr;
  hub = EventHub::Create(services);
  hub->AddModule(std::make_unique<LendingModule>(context));
  hub->Start();
  std::promise<std::thread::id> thread;
  context->GetClock().CallAfter(std::chrono::milliseconds(1),
                                [&] { thread.set_value(std::this_thread::get_id()); });
  EXPECT_THAT(host.processInfo->ThreadNames(),
              testing::Contains(testing::Pair(thread.get_future().get(), "VelmoraClock")));
  bool isCalled = false;
  context->GetClock().CallAfter(std::chrono::hours(1), [&] { isCalled = true; });
  Finish();
  context->GetClock().CallAfter(std::chrono::milliseconds(0), [&] { isCalled = true; });
  EXPECT_FALSE(isCalled);
}

TEST_F(EventHubTest, OrdersAModulesStatesByWhatItHasHandledNotByWhatWaits) {
  class StatefulModule final : public Velmora::HubModule {
   public:
    std::string GetName() const override { return "stateful"; }
    void Attach(Velmora::HubContext& context) override {
      context.Listen("test.type", "test.source", [&context](const EventPointer& event) {
        if (event->GetName() == "first") context.SetSharedState("at home", nullptr);
        if (event->GetName() == "second") context.SetSharedState("newest", event);
      });
    }
  };
  hub = EventHub::Create(services);
  hub->AddModule(std::make_unique<StatefulModule>());
  for (const char* name : {"first", "second", "third"}) EXPECT_EQ(Dispatch(NewEvent(name)), "");
  hub->Start();
  Finish();
  EXPECT_EQ(*hub->GetSharedState("stateful", nullptr), "newest");
}

TEST_F(EventHubTest, DropsEventsBeyondAModulesLimitWithoutHarmToOthers) {
  Velmora::EventHubLimits limits;
  limits.moduleEvents.items = 2;
  ExpectThatASlowModuleMissesTwoOfFive(limits,
                                       [](const std::string& name) { return NewEvent(name); });
}

TEST_F(EventHubTest, TracesEveryEventInOneLine) {
  Velmora::Log::SetLogLevel(Velmora::LoggingMode::Trace);
  StartHub();
  log.ExpectLine(LogLevel::Debug, "EventHub", "event 1: type t, source s, name \"two?lines\"");
  EXPECT_EQ(Dispatch(NewEvent("two\nlines", "t", "s")), "");
  Finish();
}

TEST_F(EventHubTest, NamesItsThreads) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("a module with a long name");
  EXPECT_EQ(Register(module), "");
  Finish();
  std::vector<std::string> names;
  for (const auto& [thread, name] : host.processInfo->ThreadNames()) names.push_back(name);
  EXPECT_THAT(names, testing::UnorderedElementsAre("VelmoraEventHub", "VelmoraCallback",
                                                   "a module with a"));
}

TEST_F(EventHubTest, RunsWithoutASystemInformationService) {
  services->systemInfo = nullptr;
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  Finish();
  EXPECT_EQ(listener->Count(), 1U);
}

}  // namespace
