#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/SdkError.h"
#include "hub/EventHub.h"
#include "services/system/NativeSystemInfoService.h"
#include "support/FakeHost.h"
#include "support/FakePlatformServices.h"
#include "support/LogCapture.h"
#include "unit/core/hub/Gate.h"
#include "unit/core/hub/HubDoubles.h"

// A hub without modules of its own.
class HubFixture : public testing::Test {
 protected:
  static constexpr std::chrono::seconds kLongEnough{10};

  HubFixture() { services->systemInfo = Velmora::CreateNativeSystemInfoService(); }

  void StartHub(Velmora::EventHubLimits limits = {}) {
    hub = Velmora::EventHub::Create(services, limits);
    hub->Start();
  }

  // The error's code; empty when the event was accepted.
  std::string Dispatch(const EventPointer& event) { return CodeOf(hub->Dispatch(event)); }
  std::string Register(const std::shared_ptr<Velmora::ExternalModuleInterface>& module) {
    return CodeOf(hub->RegisterModule(module));
  }
  static std::string CodeOf(const std::optional<Velmora::SdkError>& error) {
    return error.has_value() ? error->GetCode() : "";
  }

  // A module that has been registered with one listener.
  std::shared_ptr<RecordingModule> RegisterWith(const std::string& name,
                                                const std::shared_ptr<RecordingListener>& listener,
                                                const std::string& type = "test.type",
                                                const std::string& source = "test.source") {
    auto module = std::make_shared<RecordingModule>(name);
    module->onRegister = [listener, type, source](const ModuleServices& moduleServices) {
      moduleServices->RegisterListener(listener, type, source);
    };
    EXPECT_EQ(Register(module), "");
    return module;
  }

  // Five events for two modules, one of which is stuck with the first until all have been sent.
  void ExpectThatASlowModuleMissesTwoOfFive(
      const Velmora::EventHubLimits& limits,
      const std::function<EventPointer(const std::string& name)>& newEvent) {
    StartHub(limits);
    const auto gate = std::make_shared<Gate>();
    const auto slow = std::make_shared<RecordingListener>([gate](const auto&) { gate->Pass(); });
    const auto quick = std::make_shared<RecordingListener>();
    RegisterWith("slow", slow);
    RegisterWith("quick", quick);
    EXPECT_EQ(Dispatch(newEvent("1")), "");
    gate->AwaitArrivals();
    for (std::size_t count = 2; count <= 5; ++count) {
      EXPECT_EQ(Dispatch(newEvent(std::to_string(count))), "");
      EXPECT_TRUE(quick->WaitForCount(count));
    }
    log.ExpectLine(TestSupport::LogLevel::Warning, "EventHub",
                   "module slow: 2 events were dropped because its queue was full");
    gate->Open();
    Finish();
    EXPECT_THAT(slow->Names(), testing::ElementsAre("1", "2", "3"));
    EXPECT_THAT(quick->Names(), testing::ElementsAre("1", "2", "3", "4", "5"));
  }

  void TearDown() override {
    if (hub != nullptr) Finish();
  }

  // Handles all that waits, so that what was not heard by then never will be.
  void Finish() { hub->Dispose(kLongEnough); }

  TestSupport::FakeHost host;
  TestSupport::LogCapture log{Velmora::LoggingMode::Debug};
  std::shared_ptr<TestSupport::FakePlatformServices> services =
      std::make_shared<TestSupport::FakePlatformServices>();
  std::shared_ptr<Velmora::EventHub> hub;
};
