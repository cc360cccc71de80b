#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "hub/EventHub.h"
#include "unit/core/hub/CoreFixture.h"

namespace {

using testing::ElementsAre;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::Core;
using Velmora::EventData;
using Velmora::MobilePrivacyStatus;
using Velmora::Variant;
namespace ErrorCodes = Velmora::ErrorCodes;

class CoreRequestsTest : public CoreFixture {
 protected:
  void ExpectRequest(const std::string& type, const std::string& source, const std::string& name,
                     const std::string& data) {
    Finish();
    const EventPointer event = Heard(type, source);
    EXPECT_EQ(event->GetName(), name);
    EXPECT_EQ(DataOf(event), data);
    EXPECT_EQ(CountHeard(type, source), 1U);
  }
  void AllowDebug(const std::string& tag) { log.AllowLines(LogLevel::Debug, tag, testing::_); }
};

TEST_F(CoreRequestsTest, CreateNeedsServices) {
  EXPECT_EQ(CodeThrownBy([] { Core::Create(nullptr, nullptr); }),
            ErrorCodes::kPlatformServicesMissingService);
}

TEST_F(CoreRequestsTest, CreateSendsLogLinesToTheLoggingService) {
  Velmora::Log::SetLoggingService(nullptr);
  StartCore();
  log.ExpectLine(LogLevel::Error, "Rules", testing::_);
  core->DownloadRules();
  Finish();
}

TEST_F(CoreRequestsTest, CreateWorksWithoutAnyService) {
  const auto none = std::make_shared<TestSupport::FakePlatformServices>();
  log.ExpectLine(LogLevel::Warning, "Core", "the platform has no logging service");
  log.ExpectLine(LogLevel::Warning, "Configuration", testing::HasSubstr("no data store"));
  log.ExpectLine(LogLevel::Warning, "Identity", testing::HasSubstr("no data store"));
  log.AllowLines(LogLevel::Error, "Configuration", testing::HasSubstr("no JSON service"));
  core = Core::Create(none, nullptr);
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  TestSupport::Guarded<std::vector<MobilePrivacyStatus>> statuses;
  core->GetPrivacyStatus([&](const MobilePrivacyStatus& status) { statuses.Set({status}); });
  EXPECT_TRUE(WaitUntil([&] { return !statuses.Get().empty(); }));
  EXPECT_THAT(statuses.Get(), ElementsAre(MobilePrivacyStatus::OptedOut));
}

TEST_F(CoreRequestsTest, CreateTakesAHubThatItIsGiven) {
  const auto hub = Velmora::EventHub::Create(services);
  core = Core::Create(services, hub);
  core->Start(nullptr);
  EXPECT_TRUE(WaitUntil([&] { return hub->AcceptedCount() > 0; }));
  core->Dispose();
}

TEST_F(CoreRequestsTest, CreateRefusesAHubThatServesAnotherCore) {
  const auto hub = Velmora::EventHub::Create(services);
  core = Core::Create(services, hub);
  EXPECT_EQ(CodeThrownBy([&] { Core::Create(services, hub); }),
            ErrorCodes::kEventHubAlreadyStarted);
  EXPECT_EQ(Dispatch(NewEvent("event")), "") << "the first core goes on";
  core->Dispose();
  EXPECT_EQ(CodeThrownBy([&] { Core::Create(services, hub); }), ErrorCodes::kEventHubDisposed);
}

// Keeps the hub's thread at a gate when it meets a "block" event.
class BlockingModule final : public Velmora::HubModule {
 public:
  explicit BlockingModule(std::shared_ptr<Gate> gate) : gate_(std::move(gate)) {}
  std::string GetName() const override { return "blocking"; }
  void Attach(Velmora::HubContext& context) override {
    context.Listen("block", "test", [this](const EventPointer&) { gate_->Pass(); });
  }

 private:
  const std::shared_ptr<Gate> gate_;
};

TEST_F(CoreRequestsTest, AFloodOfEventsAndReportsDropsNoOptOut) {
  constexpr int kFlood = 100;
  Velmora::EventHubLimits limits;
  limits.events.items = 50;
  const auto hub = Velmora::EventHub::Create(services, limits);
  const auto gate = std::make_shared<Gate>();
  hub->AddModule(std::make_unique<BlockingModule>(gate));
  core = Core::Create(services, hub);
  EXPECT_EQ(Dispatch(NewEvent("wait", "block", "test")), "");
  gate->AwaitArrivals();
  for (int count = 0; count < kFlood; ++count) {
    core->Track(std::make_shared<EventData>());
    core->CollectPii({});
    core->CollectData({});
  }
  EXPECT_EQ(Dispatch(NewEvent("flood")), ErrorCodes::kEventHubQueueFull);
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  TestSupport::Guarded<std::vector<MobilePrivacyStatus>> statuses;
  core->GetPrivacyStatus([&](const MobilePrivacyStatus& status) { statuses.Set({status}); });
  log.ExpectLine(LogLevel::Warning, "EventHub", testing::EndsWith("because the queue was full"));
  log.AllowLines(LogLevel::Warning, "EventHub", testing::EndsWith("because the queue was full"));
  gate->Open();
  EXPECT_TRUE(WaitUntil([&] { return !statuses.Get().empty(); }));
  EXPECT_THAT(statuses.Get(), ElementsAre(MobilePrivacyStatus::OptedOut));
}

TEST_F(CoreRequestsTest, ConfigureWithAppId) {
  StartCore();
  log.AllowLines(LogLevel::Warning, "Configuration", testing::HasSubstr("VelmoraConfigurationUrl"));
  core->ConfigureWithAppId("app 7");
  ExpectRequest(EventTypes::kConfiguration, EventSources::kRequest, "configure with app id",
                "{appId:\"app 7\"}");
}

TEST_F(CoreRequestsTest, ConfigureWithFileInPath) {
  StartCore();
  log.AllowLines(LogLevel::Error, "Configuration", testing::_);
  core->ConfigureWithFileInPath("/no/such/file");
  ExpectRequest(EventTypes::kConfiguration, EventSources::kRequest, "configure with file",
                "{filePath:\"/no/such/file\"}");
}

TEST_F(CoreRequestsTest, UpdateConfiguration) {
  StartCore();
  core->UpdateConfiguration({{"a", Variant::FromLong(1)}});
  ExpectRequest(EventTypes::kConfiguration, EventSources::kRequest, "update configuration",
                "{update:{a:1}}");
}

TEST_F(CoreRequestsTest, SetPrivacyStatus) {
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  ExpectRequest(EventTypes::kConfiguration, EventSources::kRequest, "set privacy status",
                "{privacyStatus:1}");
}

TEST_F(CoreRequestsTest, CollectPii) {
  StartCore();
  core->CollectPii({{"email", "a@b"}});
  ExpectRequest(EventTypes::kPii, EventSources::kRequest, "collect pii",
                "{collected:{email:\"a@b\"}}");
}

TEST_F(CoreRequestsTest, CollectDataWithNothing) {
  StartCore();
  core->CollectData({});
  ExpectRequest(EventTypes::kData, EventSources::kRequest, "collect data", "{collected:{}}");
}

TEST_F(CoreRequestsTest, LifecycleStart) {
  StartCore();
  core->LifecycleStart({{"from", "widget"}});
  ExpectRequest(EventTypes::kLifecycle, EventSources::kRequest, "lifecycle start",
                "{contextdata:{from:\"widget\"},phase:\"start\"}");
}

TEST_F(CoreRequestsTest, LifecyclePause) {
  StartCore();
  AllowDebug("Lifecycle");
  core->LifecyclePause();
  ExpectRequest(EventTypes::kLifecycle, EventSources::kRequest, "lifecycle pause",
                "{phase:\"pause\"}");
}

TEST_F(CoreRequestsTest, SetAdvertisingIdentifier) {
  StartCore();
  core->SetAdvertisingIdentifier("ad");
  ExpectRequest(EventTypes::kIdentity, EventSources::kRequest, "set advertising identifier",
                "{advertisingIdentifier:\"ad\"}");
}

TEST_F(CoreRequestsTest, SetPushIdentifier) {
  StartCore();
  core->SetPushIdentifier("");
  ExpectRequest(EventTypes::kIdentity, EventSources::kRequest, "set push identifier",
                "{pushIdentifier:\"\"}");
}

TEST_F(CoreRequestsTest, TrackCopiesItsData) {
  StartCore();
  const auto data = std::make_shared<EventData>();
  data->PutString(EventKeys::kAction, "buy");
  data->PutStringMap(EventKeys::kContextData, {{"sku", "A-17"}});
  core->Track(data);
  data->PutString(EventKeys::kAction, "changed");
  ExpectRequest(EventTypes::kAnalytics, EventSources::kRequest, "track",
                "{action:\"buy\",contextdata:{sku:\"A-17\"}}");
}

TEST_F(CoreRequestsTest, DownloadRules) {
  StartCore();
  log.ExpectLine(LogLevel::Error, "Rules",
                 "no rules can be had: there is no compressed file service");
  core->DownloadRules();
  ExpectRequest(EventTypes::kRules, EventSources::kRequest, "download rules", "{}");
}

TEST_F(CoreRequestsTest, StartCallsBackAfterAllThatWasAskedForBefore) {
  StartCore();
  log.AllowLines(LogLevel::Warning, "Configuration", testing::HasSubstr("VelmoraConfigurationUrl"));
  CallLog calls;
  const auto module = std::make_shared<RecordingModule>("module");
  module->onRegister = [&](const ModuleServices&) { Add(calls, "registered"); };
  core->ConfigureWithAppId("app");
  EXPECT_EQ(Register(module), "");
  core->GetPrivacyStatus([&](const MobilePrivacyStatus&) { Add(calls, "told"); });
  core->Start([&] { Add(calls, "started"); });
  EXPECT_TRUE(WaitUntil([&] { return calls.Get().size() == 3; }));
  EXPECT_THAT(calls.Get(), testing::UnorderedElementsAre("registered", "told", "started"));
  EXPECT_THAT(StateOf("configuration"), testing::HasSubstr("\"appId\":\"app\""));
  core->Start(nullptr);
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kHub, EventSources::kBooted), 2U);
}

TEST_F(CoreRequestsTest, RegistrationErrorsAreReportedBeforeItReturns) {
  StartCore();
  EXPECT_EQ(Register(std::make_shared<RecordingModule>("")),
            ErrorCodes::kExternalModuleBadModuleName);
  EXPECT_EQ(Register(std::make_shared<RecordingModule>("witness")),
            ErrorCodes::kExternalModuleDuplicateModuleName);
  for (const char* name : {"configuration", "identity", "lifecycle", "analytics", "rules"}) {
    EXPECT_EQ(Register(std::make_shared<RecordingModule>(name)),
              ErrorCodes::kExternalModuleDuplicateModuleName);
  }
}

TEST_F(CoreRequestsTest, DispatchErrorsAreReportedBeforeItReturns) {
  StartCore();
  const EventPointer event = NewEvent("event");
  EXPECT_EQ(Dispatch(event), "");
  EXPECT_EQ(Dispatch(nullptr), ErrorCodes::kExternalModuleEventWasNull);
  EXPECT_EQ(Dispatch(NewEvent("", "")), ErrorCodes::kExternalModuleEventTypeNotSupported);
  const auto dispatchResponse = [&](const EventPointer& response, const EventPointer& request) {
    return CodeReportedBy(
        [&](auto onError) { core->DispatchResponseEvent(response, request, std::move(onError)); });
  };
  EXPECT_EQ(dispatchResponse(nullptr, event), ErrorCodes::kExternalModuleEventWasNull);
  EXPECT_EQ(dispatchResponse(event, nullptr), ErrorCodes::kExternalModuleEventWasNull);
  EXPECT_EQ(dispatchResponse(NewEvent("", "t", " "), event),
            ErrorCodes::kExternalModuleEventSourceNotSupported);
  EXPECT_EQ(CodeReportedBy([&](auto onError) {
              core->DispatchEventWithResponseCallback(nullptr, nullptr, std::move(onError));
            }),
            ErrorCodes::kExternalModuleEventWasNull);
}

TEST_F(CoreRequestsTest, ARefusalThatNobodyHearsIsLogged) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Core",
                 testing::StartsWith("refused: external_module.event_was_null: "));
  core->DispatchEvent(nullptr, nullptr);
}

TEST_F(CoreRequestsTest, AnAnswerReachesTheOneWhoAsked) {
  StartCore();
  CallLog answers;
  const EventPointer request = NewEvent("question");
  EXPECT_EQ(CodeReportedBy([&](auto onError) {
              core->DispatchEventWithResponseCallback(
                  request, [&](const EventPointer& answer) { Add(answers, answer->GetName()); },
                  std::move(onError));
            }),
            "");
  EXPECT_EQ(CodeReportedBy([&](auto onError) {
              core->DispatchResponseEvent(NewEvent("answer"), request, std::move(onError));
            }),
            "");
  Finish();
  EXPECT_THAT(answers.Get(), ElementsAre("answer"));
}

TEST_F(CoreRequestsTest, GettersWithoutACallbackDoNothing) {
  StartCore();
  core->GetPrivacyStatus(nullptr);
  core->GetSDKIdentities(nullptr);
  Finish();
  EXPECT_EQ(CountHeard(EventTypes::kConfiguration, EventSources::kQuery), 0U);
  EXPECT_EQ(CountHeard(EventTypes::kIdentity, EventSources::kQuery), 0U);
}

}  // namespace
