#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"
#include "support/Guarded.h"
#include "unit/core/hub/HubFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;

class EventHubResponsesTest : public HubFixture {
 protected:
  // Dispatches a request whose answers' names go to `answers`.
  EventPointer Ask(const std::string& name) {
    const EventPointer request = NewEvent(name, "question", "app");
    EXPECT_EQ(CodeOf(hub->Dispatch(
                  request, [this](const EventPointer& event) { Add(answers, event->GetName()); })),
              "");
    return request;
  }
  void Answer(const EventPointer& request, const std::string& name) {
    EXPECT_EQ(Dispatch(NewEvent(name, "answer", "app")->AsResponseTo(*request)), "");
  }

  CallLog answers;
};

TEST_F(EventHubResponsesTest, TheFirstAnswerIsHeardOnceAndTheNextAreNot) {
  StartHub();
  const EventPointer request = Ask("request");
  Answer(request, "first");
  Answer(request, "second");
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("first"));
}

TEST_F(EventHubResponsesTest, AListenerMayAnswerTheEventThatItHears) {
  StartHub();
  const auto listener = std::make_shared<RecordingListener>([this](const EventPointer& question) {
    Answer(question, "answer to " + question->GetName());
  });
  RegisterWith("answering", listener, "question", "app");
  Ask("one");
  Ask("two");
  EXPECT_TRUE(WaitUntil([this] { return answers.Get().size() == 2; }));
  EXPECT_THAT(answers.Get(), ElementsAre("answer to one", "answer to two"));
}

TEST_F(EventHubResponsesTest, AnswersFindTheirOwnRequest) {
  StartHub();
  const EventPointer one = Ask("one");
  const EventPointer two = Ask("two");
  Answer(two, "second");
  Answer(NewEvent("never asked"), "stray");
  Answer(one, "first");
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("second", "first"));
}

TEST_F(EventHubResponsesTest, ALateAnswerStillArrives) {
  StartHub();
  const EventPointer request = Ask("request");
  for (int count = 0; count < 1'000; ++count) EXPECT_EQ(Dispatch(NewEvent("other")), "");
  Answer(request, "late");
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("late"));
}

TEST_F(EventHubResponsesTest, RequestsThatAreNeverAnsweredDoNotPileUp) {
  Velmora::EventHubLimits limits;
  limits.responseWaiters = 2;
  StartHub(limits);
  log.ExpectLine(LogLevel::Warning, "EventHub", testing::HasSubstr("more than 2 requests"));
  const EventPointer forgotten = Ask("1");
  Ask("2");
  const EventPointer kept = Ask("3");
  Answer(forgotten, "too late");
  Answer(kept, "in time");
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("in time"));
}

TEST_F(EventHubResponsesTest, ARefusedRequestIsNotWaitedFor) {
  Velmora::EventHubLimits limits;
  limits.events.items = 1;
  hub = Velmora::EventHub::Create(services, limits);
  const EventPointer accepted = Ask("accepted");
  const EventPointer refused = NewEvent("refused");
  const auto neverCalled = [](const EventPointer&) { ADD_FAILURE() << "was called"; };
  EXPECT_EQ(CodeOf(hub->Dispatch(refused, neverCalled)), Velmora::ErrorCodes::kEventHubQueueFull);
  EXPECT_EQ(CodeOf(hub->Dispatch(NewEvent("", "", "s"), neverCalled)),
            Velmora::ErrorCodes::kExternalModuleEventTypeNotSupported);
  hub->Start();
  for (const EventPointer& request : {refused, accepted}) {
    const EventPointer answer = NewEvent("answer")->AsResponseTo(*request);
    EXPECT_TRUE(WaitUntil([&] { return Dispatch(answer) == ""; })) << "there is room again";
  }
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("answer"));
}

TEST_F(EventHubResponsesTest, CallbacksRunOnAThreadOfTheirOwnAndMayBeSlow) {
  StartHub();
  const auto gate = std::make_shared<Gate>();
  const EventPointer request = NewEvent("request");
  EXPECT_EQ(CodeOf(hub->Dispatch(request, [gate](const EventPointer&) { gate->Pass(); })), "");
  Answer(request, "answer");
  gate->AwaitArrivals();
  const auto listener = std::make_shared<RecordingListener>();
  RegisterWith("listening", listener);
  EXPECT_EQ(Dispatch(NewEvent("meanwhile")), "");
  EXPECT_TRUE(listener->WaitForCount(1));
  gate->Open();
  Finish();
}

TEST_F(EventHubResponsesTest, ACallbackThatThrowsIsLoggedOnce) {
  StartHub();
  log.ExpectLine(LogLevel::Error, "EventHub", "a callback failed: std.exception: no such luck");
  const EventPointer request = NewEvent("request");
  EXPECT_EQ(CodeOf(hub->Dispatch(
                request, [](const EventPointer&) { throw std::runtime_error("no such luck"); })),
            "");
  Answer(request, "answer");
  Answer(Ask("another"), "fine");
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("fine"));
}

TEST_F(EventHubResponsesTest, ACallbackMayAskAgain) {
  StartHub();
  const EventPointer request = NewEvent("request");
  EXPECT_EQ(CodeOf(hub->Dispatch(request,
                                 [this](const EventPointer&) { Answer(Ask("again"), "again"); })),
            "");
  Answer(request, "answer");
  EXPECT_TRUE(WaitUntil([this] { return answers.Get().size() == 1; }));
  EXPECT_THAT(answers.Get(), ElementsAre("again"));
}

TEST_F(EventHubResponsesTest, NobodyIsCalledAfterDispose) {
  StartHub();
  const EventPointer request = Ask("request");
  Finish();
  EXPECT_EQ(Dispatch(NewEvent("answer")->AsResponseTo(*request)),
            Velmora::ErrorCodes::kEventHubDisposed);
  EXPECT_THAT(answers.Get(), IsEmpty());
}

}  // namespace
