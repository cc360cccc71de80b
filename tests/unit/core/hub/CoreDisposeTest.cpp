#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"
#include "base/LeftoverThreads.h"
#include "unit/core/hub/CoreFixture.h"

namespace {

using std::chrono::milliseconds;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::Core;
using Velmora::EventData;
using Velmora::MobilePrivacyStatus;

class CoreDisposeTest : public CoreFixture {};

TEST_F(CoreDisposeTest, HandlesWhatWaitsThenDisposesTheServicesOnce) {
  StartCore();
  for (int count = 0; count < 100; ++count) core->Track(std::make_shared<EventData>());
  core->Dispose();
  core->Dispose();
  EXPECT_EQ(CountHeard(EventTypes::kAnalytics, EventSources::kRequest), 100U);
  EXPECT_EQ(CountHeard(EventTypes::kAnalytics, EventSources::kPrepared), 100U)
      << "what follows from a request is handled with it";
  EXPECT_THAT(witness->Calls(), ElementsAre("register", "unregister"));
  EXPECT_THAT(services->DisposeTimeouts(),
              ElementsAre(AllOf(Ge(milliseconds(0)), Le(milliseconds(2'000)))));
}

TEST_F(CoreDisposeTest, TellsWhenTheServicesHadWorkLeft) {
  services->disposeResult = false;
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Core", "the platform services were stopped with work left");
  core->Dispose();
}

TEST_F(CoreDisposeTest, TheDestructorDisposes) {
  StartCore();
  core = nullptr;
  EXPECT_THAT(witness->Calls(), ElementsAre("register", "unregister"));
  EXPECT_EQ(services->DisposeTimeouts().size(), 1U);
}

TEST_F(CoreDisposeTest, EverythingIsIgnoredAfterwardsWithADebugLine) {
  StartCore();
  core->Dispose();
  const std::size_t heard = listener->Count();
  const auto neverCalled = [](const auto&...) { ADD_FAILURE() << "was called"; };
  core->ConfigureWithAppId("a");
  core->ConfigureWithFileInPath("a");
  core->UpdateConfiguration({});
  core->GetSDKIdentities(neverCalled);
  core->GetPrivacyStatus(neverCalled);
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  core->Start(neverCalled);
  core->CollectPii({});
  core->LifecyclePause();
  core->LifecycleStart({});
  core->SetAdvertisingIdentifier("a");
  core->SetPushIdentifier("a");
  core->Track(nullptr);
  core->CollectData({});
  core->DownloadRules();
  const std::vector<TestSupport::LogLine> lines = log.TakeLines();
  EXPECT_EQ(lines.size(), 15U);
  for (const TestSupport::LogLine& line : lines) {
    EXPECT_EQ(line.level, LogLevel::Debug);
    EXPECT_THAT(line.message, testing::EndsWith("was ignored: the event hub has been disposed"));
  }
  EXPECT_EQ(listener->Count(), heard);
}

TEST_F(CoreDisposeTest, ErrorsAreReportedAfterwards) {
  StartCore();
  core->Dispose();
  const char* const code = Velmora::ErrorCodes::kEventHubDisposed;
  EXPECT_EQ(Register(std::make_shared<RecordingModule>("module")), code);
  EXPECT_EQ(Dispatch(NewEvent("event")), code);
  EXPECT_EQ(CodeReportedBy([&](auto onError) {
              core->DispatchEventWithResponseCallback(NewEvent("event"), nullptr,
                                                      std::move(onError));
            }),
            code);
  EXPECT_EQ(CodeReportedBy([&](auto onError) {
              core->DispatchResponseEvent(NewEvent("a"), NewEvent("b"), std::move(onError));
            }),
            code);
  EXPECT_EQ(log.TakeLines().size(), 4U);
}

TEST_F(CoreDisposeTest, MayHappenOnAnyOfItsOwnThreads) {
  for (const bool isCallback : {true, false}) {
    StartCore();
    TestSupport::Guarded<bool> isDone{false};
    const auto dispose = [&] {
      core->Dispose();
      isDone.Set(true);
    };
    log.AllowLines(LogLevel::Warning, "EventHub", testing::StartsWith("disposed with work left"));
    const auto disposing = std::make_shared<RecordingModule>("disposing");
    disposing->onRegister = [&](const ModuleServices&) { dispose(); };
    if (isCallback) {
      core->Start(dispose);
    } else {
      EXPECT_EQ(Register(disposing), "");
    }
    EXPECT_TRUE(WaitUntil([&] { return isDone.Get(); }));
    core = nullptr;
    EXPECT_THAT(witness->Calls(), ElementsAre("register", "unregister"));
  }
}

TEST_F(CoreDisposeTest, TheLastOwnerMayBeAListener) {
  StartCore();
  const auto gate = std::make_shared<Gate>();
  const auto last = std::make_shared<TestSupport::Guarded<std::shared_ptr<Core>>>();
  const std::weak_ptr<Core> watch = core;
  const auto hearing = std::make_shared<RecordingListener>([gate, last](const EventPointer&) {
    gate->Pass();
    last->Set(nullptr);
  });
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [hearing](const ModuleServices& moduleServices) {
    moduleServices->RegisterListener(hearing, "test.type", "test.source");
  };
  EXPECT_EQ(Register(module), "");
  EXPECT_TRUE(module->WaitForCalls({"register"}));
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  gate->AwaitArrivals();
  log.AllowLines(LogLevel::Warning, "EventHub", testing::StartsWith("disposed with work left"));
  last->Set(core);
  core = nullptr;
  gate->Open();
  EXPECT_TRUE(WaitUntil([&] { return watch.expired(); }));
  EXPECT_TRUE(module->WaitForCalls({"register", "unregister"}));
  EXPECT_TRUE(WaitUntil([] { return Velmora::LeftoverThreads::JoinThoseDone(); }));
}

TEST_F(CoreDisposeTest, ManyCoresMayLiveSideBySide) {
  StartCore();
  const auto other = Core::Create(services, nullptr);
  other->Dispose();
  EXPECT_EQ(Dispatch(NewEvent("event")), "");
  Finish();
  EXPECT_EQ(CountHeard("test.type", "test.source"), 1U);
}

}  // namespace
