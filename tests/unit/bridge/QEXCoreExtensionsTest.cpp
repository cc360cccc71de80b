#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "QEXCore_iOS/QEXCore.h"
#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Event.h"
#include "support/ScriptedExtension.h"

namespace {

using Platform::ClassOf;
using Platform::Error;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::ExtensionEvent;
using TestSupport::LogLevel;
using TestSupport::RecordingCore;
using Delivery = RecordingCore::Delivery;
using Extension = TestSupport::ScriptedExtension<>;

const Error kUntouched("untouched", 42);
constexpr char kDomain[] = "com.velmora.module_errors";

ExtensionEvent NewEvent(const std::string& name = "name") {
  return QEXExtensionEvent::extensionEventWithName(name, "type", "source", {}, nullptr);
}

class QEXCoreExtensions : public TestSupport::BridgeFixture {
 protected:
  using Request = std::function<bool(Error*)>;

  QEXCoreExtensions() { Extension::Reset({}); }
  ~QEXCoreExtensions() override {
    Extension::Reset({});
    RecordingCore::Reset();
    EXPECT_EQ(TestSupport::liveExtensions, 0);
  }

  static bool Register(Error* error) {
    return QEXCore::registerExtension(ClassOf<Extension>(), error);
  }
  // Every operation that can be refused.
  static std::vector<Request> Requests() {
    return {
        &Register,
        [](Error* error) { return QEXCore::dispatchEvent(NewEvent(), error); },
        [](Error* error) {
          return QEXCore::dispatchEventWithResponseCallback(
              NewEvent(), [](const ExtensionEvent&) { ADD_FAILURE() << "was answered"; }, error);
        },
        [](Error* error) { return QEXCore::dispatchResponseEvent(NewEvent(), NewEvent(), error); },
    };
  }
  static void ExpectRefused(const Request& request, std::int64_t code) {
    Error error = kUntouched;
    EXPECT_FALSE(request(&error));
    EXPECT_EQ(error, Error(kDomain, code));
    EXPECT_FALSE(request(nullptr));
  }
  static RecordingCore::Call LastCall() {
    const auto calls = RecordingCore::Calls();
    return calls.empty() ? RecordingCore::Call() : calls.back();
  }
};

TEST_F(QEXCoreExtensions, RegisterExtensionHandsOverAModuleThatKnowsItsName) {
  Error error = kUntouched;
  EXPECT_TRUE(Register(&error));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(LastCall().operation, "RegisterExternalModule");
  EXPECT_EQ(LastCall().module->GetModuleName(), "test.extension");
  EXPECT_EQ(LastCall().module->GetModuleVersion(), "1.0.0");
  EXPECT_THAT(Extension::calls.Get(), testing::Each("name")) << "nothing is initialised yet";
  EXPECT_EQ(TestSupport::liveExtensions, 1);
}

TEST_F(QEXCoreExtensions, AClassThatIsNoExtensionIsCode6AndTheCoreIsNotTouched) {
  for (const Platform::Class& extensionClass :
       {ClassOf<std::string>(), ClassOf<QEXExtensionEvent>(), ClassOf<QEXExtensionListener>(),
        Platform::Class()}) {
    ExpectRefused([&](Error* error) { return QEXCore::registerExtension(extensionClass, error); },
                  6);
  }
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
}

TEST_F(QEXCoreExtensions, AnExtensionWithoutANameIsCode1AndTheCoreIsNotTouched) {
  for (const std::optional<std::string>& name :
       {std::optional<std::string>(), std::optional<std::string>(""),
        std::optional<std::string>(std::string("\0name", 5))}) {
    Extension::Reset({.name = name});
    ExpectRefused(&Register, 1);
  }
  ExpectRefused(
      [](Error* error) { return QEXCore::registerExtension(ClassOf<QEXExtension>(), error); }, 1);
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
  EXPECT_EQ(TestSupport::liveExtensions, 0);
}

TEST_F(QEXCoreExtensions, AnExtensionThatCannotTellItsNameIsAnUnknownErrorAndOneErrorLine) {
  Extension::Reset({.onName = [] { throw std::runtime_error("host bug"); }});
  Error error = kUntouched;
  EXPECT_FALSE(Register(&error));
  EXPECT_EQ(error, Error(kDomain, 0));
  log.ExpectLine(LogLevel::Error, "QEXCore", "registerExtension failed: host bug");
  EXPECT_THAT(RecordingCore::Operations(), IsEmpty());
}

TEST_F(QEXCoreExtensions, WhatTheCoreRefusesHasThePublicCode) {
  const std::vector<std::pair<std::string, std::int64_t>> codes = {
      {"external_module.bad_module_name", 1},
      {"external_module.dup_module_name", 2},
      {"external_module.event_type_not_supported", 3},
      {"external_module.event_source_not_supported", 4},
      {"external_module.event_data_not_supported", 5},
      {"external_module.event_was_null", 7},
      {"event_hub.queue_full", 0},
  };
  for (const auto& [coreCode, code] : codes) {
    RecordingCore::RejectWith(coreCode);
    for (const Request& request : Requests()) ExpectRefused(request, code);
  }
}

TEST_F(QEXCoreExtensions, WhatTheCoreThrowsIsAnUnknownErrorAndOneErrorLine) {
  RecordingCore::ThrowFrom("DispatchEvent", RecordingCore::Thrown::RuntimeError);
  Error error = kUntouched;
  EXPECT_FALSE(QEXCore::dispatchEvent(NewEvent(), &error));
  EXPECT_EQ(error, Error(kDomain, 0));
  log.ExpectLine(LogLevel::Error, "QEXCore", "dispatchEvent failed: scripted");
}

TEST_F(QEXCoreExtensions, DispatchEventHandsOverTheEvent) {
  const ExtensionEvent event = NewEvent();
  Error error = kUntouched;
  EXPECT_TRUE(QEXCore::dispatchEvent(event, &error));
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(LastCall().operation, "DispatchEvent");
  EXPECT_EQ(LastCall().event, event->getInternalEvent());
}

TEST_F(QEXCoreExtensions, AnAbsentEventReachesTheCoreAsNone) {
  RecordingCore::RejectWith("external_module.event_was_null");
  Error error;
  EXPECT_FALSE(QEXCore::dispatchEvent(nullptr, &error));
  EXPECT_EQ(error.Code(), 7);
  EXPECT_EQ(LastCall().operation, "DispatchEvent");
  EXPECT_EQ(LastCall().event, nullptr);
  EXPECT_FALSE(QEXCore::dispatchResponseEvent(nullptr, NewEvent(), &error));
  EXPECT_EQ(LastCall().event, nullptr);
  EXPECT_NE(LastCall().requestEvent, nullptr);
}

TEST_F(QEXCoreExtensions, DispatchResponseEventHandsOverBothEvents) {
  const ExtensionEvent response = NewEvent("response");
  const ExtensionEvent request = NewEvent("request");
  EXPECT_TRUE(QEXCore::dispatchResponseEvent(response, request, nullptr));
  EXPECT_EQ(LastCall().operation, "DispatchResponseEvent");
  EXPECT_EQ(LastCall().event, response->getInternalEvent());
  EXPECT_EQ(LastCall().requestEvent, request->getInternalEvent());
}

TEST_F(QEXCoreExtensions, AResponseReachesTheCallbackOnTheThreadOfTheCore) {
  RecordingCore::RespondWith(std::make_shared<Velmora::Event>("answer", "t", "s"));
  for (const Delivery delivery : {Delivery::AtOnce, Delivery::OnAnotherThread}) {
    RecordingCore::SetDelivery(delivery);
    std::optional<std::string> name;
    std::thread::id thread;
    EXPECT_TRUE(QEXCore::dispatchEventWithResponseCallback(
        NewEvent(),
        [&](const ExtensionEvent& answer) {
          name = answer->eventName();
          thread = std::this_thread::get_id();
        },
        nullptr));
    RecordingCore::WaitForDeliveries();
    EXPECT_EQ(name, "answer");
    EXPECT_EQ(thread == std::this_thread::get_id(), delivery == Delivery::AtOnce);
  }
}

TEST_F(QEXCoreExtensions, AnAbsentResponseCallbackIsNotCalled) {
  RecordingCore::RespondWith(std::make_shared<Velmora::Event>("answer", "t", "s"));
  EXPECT_TRUE(QEXCore::dispatchEventWithResponseCallback(NewEvent(), nullptr, nullptr));
}

TEST_F(QEXCoreExtensions, AResponseCallbackThatThrowsEndsAsOneErrorLine) {
  RecordingCore::RespondWith(std::make_shared<Velmora::Event>("answer", "t", "s"));
  EXPECT_TRUE(QEXCore::dispatchEventWithResponseCallback(
      NewEvent(), [](const ExtensionEvent&) { throw std::runtime_error("host bug"); }, nullptr));
  log.ExpectLine(LogLevel::Error, "QEXCore",
                 "the callback of dispatchEventWithResponseCallback failed: host bug");
}

TEST_F(QEXCoreExtensions, ResponseCallbacksAreReleasedOnceTheCoreDropsThem) {
  const auto captured = std::make_shared<int>(1);
  QEXCore::dispatchEventWithResponseCallback(
      NewEvent(), [captured](const ExtensionEvent&) {}, nullptr);
  EXPECT_EQ(captured.use_count(), 1);
}

}  // namespace
