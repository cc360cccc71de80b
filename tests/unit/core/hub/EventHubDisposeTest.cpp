#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"
#include "base/LeftoverThreads.h"
#include "support/Guarded.h"
#include "unit/core/hub/HubFixture.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
namespace ErrorCodes = Velmora::ErrorCodes;

class EventHubDisposeTest : public HubFixture {
 protected:
  void ExpectDropped(int events, int moduleEvents, int callbacks) {
    log.ExpectLine(LogLevel::Warning, "EventHub",
                   "disposed with work left: " + std::to_string(events) + " events, " +
                       std::to_string(moduleEvents) + " events of external modules and " +
                       std::to_string(callbacks) + " callbacks were dropped");
  }
};

TEST_F(EventHubDisposeTest, HandlesWhatWaits) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  const auto module = RegisterWith("module", listener);
  for (int count = 0; count < 1'000; ++count) EXPECT_EQ(Dispatch(NewEvent("event")), "");
  hub->Dispose(kLongEnough);
  EXPECT_EQ(listener->Count(), 1'000U);
  EXPECT_EQ(listener->Calls().back(), "unregistered");
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(EventHubDisposeTest, DropsWhatIsLeftAtTheDeadlineAndCountsIt) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const auto slow = std::make_shared<RecordingListener>([gate](const auto&) { gate->Pass(); });
  const auto module = RegisterWith("slow", slow);
  const auto quick = std::make_shared<RecordingListener>();
  RegisterWith("stopped last", quick);
  for (int count = 0; count < 10; ++count) EXPECT_EQ(Dispatch(NewEvent("event")), "");
  gate->AwaitArrivals();
  EXPECT_TRUE(quick->WaitForCount(10));
  std::thread opening([&] {
    // Dispose gives up on the nine that wait, and then waits for the one that is being heard.
    EXPECT_TRUE(WaitUntil([&] { return quick->Calls().back() == "unregistered"; }));
    gate->Open();
  });
  ExpectDropped(0, 9, 0);
  hub->Dispose(milliseconds(50));
  opening.join();
  EXPECT_EQ(slow->Count(), 1U);
  EXPECT_EQ(quick->Count(), 10U);
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(EventHubDisposeTest, DropsEverythingWhenItNeverStarted) {
  hub = Velmora::EventHub::Create(services);
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  ExpectDropped(1, 0, 0);
  hub->Dispose(kLongEnough);
}

TEST_F(EventHubDisposeTest, ASecondCallDoesNothing) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("module");
  EXPECT_EQ(Register(module), "");
  hub->Dispose(kLongEnough);
  hub->Dispose(kLongEnough);
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(EventHubDisposeTest, RefusesEverythingAfterwards) {
  StartHub();
  hub->Dispose(kLongEnough);
  EXPECT_EQ(Dispatch(NewEvent("event")), ErrorCodes::kEventHubDisposed);
  EXPECT_EQ(Dispatch(nullptr), ErrorCodes::kExternalModuleEventWasNull);
  EXPECT_EQ(Register(std::make_shared<RecordingModule>("module")), ErrorCodes::kEventHubDisposed);
  log.ExpectLine(LogLevel::Debug, "EventHub",
                 "\"event\" was ignored: the event hub has been disposed");
  hub->Post(NewEvent("event"));
  hub->Start();
}

TEST_F(EventHubDisposeTest, TheLastOwnerDisposes) {
  StartHub();
  const auto module = std::make_shared<RecordingModule>("module");
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  hub = nullptr;
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(EventHubDisposeTest, MayBeCalledByAListener) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  TestSupport::Guarded<bool> hasReturned{false};
  const auto disposing = std::make_shared<RecordingListener>([&](const EventPointer&) {
    gate->Pass();
    hub->Dispose(kLongEnough);
    hasReturned.Set(true);
  });
  const auto other = std::make_shared<RecordingListener>();
  const auto module = RegisterWith("disposing", disposing);
  const auto otherModule = RegisterWith("other", other);
  for (const char* name : {"1", "2", "3"}) EXPECT_EQ(Dispatch(NewEvent(name)), "");
  gate->AwaitArrivals();
  EXPECT_TRUE(other->WaitForCount(3));
  ExpectDropped(0, 2, 0);
  gate->Open();
  EXPECT_TRUE(WaitUntil([&] { return hasReturned.Get(); }));
  hub = nullptr;
  EXPECT_THAT(disposing->Calls(), ElementsAre("registered", "heard 1", "unregistered"));
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
  EXPECT_THAT(otherModule->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(EventHubDisposeTest, MayBeCalledByACallback) {
  StartHub();
  TestSupport::Guarded<bool> hasReturned{false};
  const auto module = std::make_shared<RecordingModule>("module");
  EXPECT_EQ(Register(module), "");
  hub->PostAndFollow(NewEvent("event"), [&] {
    hub->Dispose(kLongEnough);
    hasReturned.Set(true);
  });
  EXPECT_TRUE(WaitUntil([&] { return hasReturned.Get(); }));
  hub = nullptr;
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
}

TEST_F(EventHubDisposeTest, MayBeCalledByManyAtOnce) {
  StartHub();
  const auto one =
      std::make_shared<RecordingListener>([&](const EventPointer&) { hub->Dispose(kLongEnough); });
  const auto two =
      std::make_shared<RecordingListener>([&](const EventPointer&) { hub->Dispose(kLongEnough); });
  const auto first = RegisterWith("first", one);
  const auto second = RegisterWith("second", two);
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  std::vector<std::thread> threads;
  for (int count = 0; count < 4; ++count) {
    threads.emplace_back([this] { hub->Dispose(kLongEnough); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(first->WaitForCalls({"register", "unregister"}));
  EXPECT_TRUE(second->WaitForCalls({"register", "unregister"}));
}

TEST_F(EventHubDisposeTest, TheHubMayGoOnOneOfItsOwnThreads) {
  StartHub();
  const std::weak_ptr<Velmora::EventHub> watch = hub->weak_from_this();
  const auto gate = std::make_shared<Gate>();
  const auto last = std::make_shared<TestSupport::Guarded<std::shared_ptr<Velmora::EventHub>>>(hub);
  hub->PostAndFollow(NewEvent("event"), [gate, last] {
    gate->Pass();
    last->Set(nullptr);
  });
  gate->AwaitArrivals();
  hub = nullptr;
  gate->Open();
  EXPECT_TRUE(WaitUntil([&] { return watch.expired(); }));
  EXPECT_TRUE(WaitUntil([] { return Velmora::LeftoverThreads::JoinThoseDone(); }));
}

TEST_F(EventHubDisposeTest, DoesNotWaitForAModuleThatWaitsForItsPredecessor) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const auto listener = std::make_shared<RecordingListener>([gate](const auto&) { gate->Pass(); });
  const auto module = RegisterWith("module", listener);
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  gate->AwaitArrivals();
  module->Services()->UnregisterExtension();
  const auto successor = std::make_shared<RecordingModule>("module");
  const auto last = std::make_shared<RecordingModule>("stopped last");
  EXPECT_EQ(Register(successor), "");
  EXPECT_EQ(Register(last), "");
  EXPECT_TRUE(last->WaitForCalls({"register"}));
  std::thread disposing([this] { hub->Dispose(milliseconds(0)); });
  EXPECT_TRUE(last->WaitForCalls({"register", "unregister"}));
  gate->Open();
  disposing.join();
  EXPECT_THAT(module->Calls(), ElementsAre("register", "unregister"));
  EXPECT_THAT(successor->Calls(), ElementsAre()) << "it had not been told of anything";
}

TEST_F(EventHubDisposeTest, DispatchingMeanwhileIsClean) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("module", listener);
  std::size_t accepted = 0;
  std::thread dispatching([&] {
    while (Dispatch(NewEvent("event")) == "") ++accepted;
  });
  EXPECT_TRUE(listener->WaitForCount(10));
  log.AllowLines(LogLevel::Warning, "EventHub", testing::StartsWith("disposed with work left"));
  hub->Dispose(kLongEnough);
  dispatching.join();
  EXPECT_LE(listener->Count(), accepted);
  EXPECT_GE(listener->Count(), 10U);
}

}  // namespace
