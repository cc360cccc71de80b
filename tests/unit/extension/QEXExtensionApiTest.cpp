#include <atomic>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/QEXExtension.h"
#include "QEXCore_iOS/QEXExtensionApi.h"
#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "QEXCore_iOS/QEXExtensionListener.h"
#include "VelmoraCore/Event.h"
#include "extension/ExtensionApi.h"
#include "extension/ExtensionEvents.h"
#include "support/LogCapture.h"
#include "support/RecordingModuleServices.h"
#include "support/ScriptedExtension.h"
#include "support/WaitUntil.h"

namespace {

using Platform::ClassOf;
using Platform::Error;
using Platform::Value;
using testing::ElementsAre;
using TestSupport::RecordingModuleServices;
using TestSupport::ScriptedListener;

const Error kUntouched("untouched", 42);

// One operation of the API; false, or absent, when it fails.
using Operation = std::function<bool(QEXExtensionApi&, Error*)>;
struct NamedOperation {
  std::string services;  // the operation of the services that it calls
  Operation call;
};

const std::vector<NamedOperation>& Operations() {
  static const std::vector<NamedOperation> operations = {
      {"RegisterListener",
       [](QEXExtensionApi& api, Error* error) {
         return api.registerListener(ClassOf<ScriptedListener<>>(), "type", "source", error);
       }},
      {"RegisterWildcardListener",
       [](QEXExtensionApi& api, Error* error) {
         return api.registerWildcardListener(ClassOf<ScriptedListener<>>(), error);
       }},
      {"SetSharedEventState",
       [](QEXExtensionApi& api, Error* error) {
         return api.setSharedEventState({{"key", "value"}}, nullptr, error);
       }},
      {"ClearSharedEventStates",
       [](QEXExtensionApi& api, Error* error) { return api.clearSharedEventStates(error); }},
      {"GetSharedEventState",
       [](QEXExtensionApi& api, Error* error) {
         return !api.getSharedEventState("owner", nullptr, error).IsAbsent();
       }},
  };
  return operations;
}

class QEXExtensionApiTest : public testing::Test {
 protected:
  RecordingModuleServices::Call OnlyCall() const {
    const auto calls = services->Calls();
    EXPECT_EQ(calls.size(), 1U);
    return calls.empty() ? RecordingModuleServices::Call() : calls.front();
  }
  void Throw(const std::string& code) const {
    services->onCall = [code] {
      throw Velmora::SdkError(code, "refused", Velmora::DebugInfo("test", 1));
    };
  }
  Value StateFrom(const std::string& text) const {
    services->state = text;
    return api->getSharedEventState("owner", nullptr, nullptr);
  }

  TestSupport::LogCapture log;
  const std::shared_ptr<RecordingModuleServices> services =
      std::make_shared<RecordingModuleServices>();
  const std::shared_ptr<QEXExtension> extension = std::make_shared<QEXExtension>();
  const std::shared_ptr<QEXExtensionApi> api =
      Velmora::CreateQEXExtensionApiFromExternalModuleServicesInterface(extension, services);
};

TEST_F(QEXExtensionApiTest, RegisterListenerHandsOverAListenerOfTheClass) {
  ScriptedListener<>::Reset();
  Error error = kUntouched;
  EXPECT_TRUE(
      api->registerListener(ClassOf<ScriptedListener<>>(), "shop.cart", "shop.app", &error));
  EXPECT_EQ(error, kUntouched);
  const auto call = OnlyCall();
  EXPECT_EQ(call.operation, "RegisterListener");
  EXPECT_EQ(call.type, "shop.cart");
  EXPECT_EQ(call.source, "shop.app");
  call.listener->OnRegistered();
  call.listener->Hear(std::make_shared<Velmora::Event>("heard", "t", "s"));
  EXPECT_THAT(ScriptedListener<>::heard.Get(), ElementsAre("heard"));
}

TEST_F(QEXExtensionApiTest, RegisterListenerChecksNothing) {
  EXPECT_TRUE(api->registerListener(ClassOf<std::string>(), std::nullopt, "", nullptr));
  const auto call = OnlyCall();
  EXPECT_NE(call.listener, nullptr);
  EXPECT_EQ(call.type, "");
  EXPECT_EQ(call.source, "");
}

TEST_F(QEXExtensionApiTest, TextsEndAtTheirFirstZeroByte) {
  EXPECT_TRUE(api->registerListener(ClassOf<ScriptedListener<>>(), std::string("ty\0pe", 5),
                                    std::string("\0", 1), nullptr));
  EXPECT_EQ(OnlyCall().type, "ty");
  EXPECT_EQ(OnlyCall().source, "");
}

TEST_F(QEXExtensionApiTest, RegisterWildcardListenerHandsOverAListener) {
  EXPECT_TRUE(api->registerWildcardListener(ClassOf<ScriptedListener<>>(), nullptr));
  EXPECT_EQ(OnlyCall().operation, "RegisterWildcardListener");
  EXPECT_NE(OnlyCall().listener, nullptr);
}

TEST_F(QEXExtensionApiTest, ARefusedTypeIsCode3) {
  Throw("external_module.event_type_not_supported");
  Error error;
  EXPECT_FALSE(api->registerListener(ClassOf<ScriptedListener<>>(), "", "source", &error));
  EXPECT_EQ(error, Error("com.velmora.module_errors", 3));
}

TEST_F(QEXExtensionApiTest, WhatTheServicesThrowIsTheErrorOfEveryOperation) {
  Throw("external_module.event_source_not_supported");
  for (const NamedOperation& operation : Operations()) {
    Error error = kUntouched;
    EXPECT_FALSE(operation.call(*api, &error)) << operation.services;
    EXPECT_EQ(error, Error("com.velmora.module_errors", 4)) << operation.services;
    EXPECT_FALSE(operation.call(*api, nullptr)) << operation.services;
  }
}

TEST_F(QEXExtensionApiTest, ForeignExceptionsAreUnknownErrors) {
  services->onCall = [] { throw std::runtime_error("a bug"); };
  for (const NamedOperation& operation : Operations()) {
    Error error = kUntouched;
    EXPECT_FALSE(operation.call(*api, &error));
    EXPECT_EQ(error, Error("com.velmora.module_errors", 0));
  }
  services->onCall = [] { throw 7; };
  for (const NamedOperation& operation : Operations()) EXPECT_FALSE(operation.call(*api, nullptr));
}

TEST_F(QEXExtensionApiTest, SetSharedEventStateHandsOverPrettyJsonAndTheEvent) {
  const auto event = QEXExtensionEvent::extensionEventWithName("n", "t", "s", {}, nullptr);
  Error error = kUntouched;
  EXPECT_TRUE(api->setSharedEventState({{"items", 2}, {"open", true}}, event, &error));
  EXPECT_EQ(error, kUntouched);
  const auto call = OnlyCall();
  EXPECT_EQ(call.event, event->getInternalEvent());
  EXPECT_THAT(call.text, testing::HasSubstr("\n"));
  EXPECT_EQ(StateFrom(call.text),
            Value({{"items", Value::Number(Platform::NumberType::SInt64, 2)}, {"open", true}}));
}

TEST_F(QEXExtensionApiTest, AnAbsentStateIsTheEmptyText) {
  EXPECT_TRUE(api->setSharedEventState({}, nullptr, nullptr));
  EXPECT_EQ(OnlyCall().operation, "SetSharedEventState");
  EXPECT_EQ(OnlyCall().text, "");
  EXPECT_EQ(OnlyCall().event, nullptr);
}

TEST_F(QEXExtensionApiTest, AStateThatCannotBeWrittenIsCode5AndGoesNowhere) {
  const std::vector<Value> states = {
      {{"when", Value::FromObject(std::make_shared<Platform::Date>(0.0))}},
      {{"bytes", Value::FromData({1})}},
      {{"nan", std::numeric_limits<double>::quiet_NaN()}},
      {{5, "no text"}},
      {{"text", "\xC3"}},
      "text",
      5,
      Value::Null(),
      Value::Array({1}),
  };
  for (const Value& state : states) {
    Error error = kUntouched;
    EXPECT_FALSE(api->setSharedEventState(state, nullptr, &error)) << state.Description();
    EXPECT_EQ(error, Error("com.velmora.module_errors", 5)) << state.Description();
    EXPECT_FALSE(api->setSharedEventState(state, nullptr, nullptr));
  }
  EXPECT_TRUE(services->Calls().empty());
}

TEST_F(QEXExtensionApiTest, ClearSharedEventStatesPassesOn) {
  EXPECT_TRUE(api->clearSharedEventStates(nullptr));
  EXPECT_EQ(OnlyCall().operation, "ClearSharedEventStates");
}

TEST_F(QEXExtensionApiTest, GetSharedEventStateReadsTheText) {
  services->state = R"({"count": 2, "list": [1, "two"]})";
  const auto event = QEXExtensionEvent::extensionEventWithName("n", "t", "s", {}, nullptr);
  Error error = kUntouched;
  const Value state = api->getSharedEventState("owner", event, &error);
  EXPECT_EQ(state.Get("count").AsInt64(), 2);
  EXPECT_EQ(state.Get("list").Count(), 2U);
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(OnlyCall().text, "owner");
  EXPECT_EQ(OnlyCall().event, event->getInternalEvent());
}

TEST_F(QEXExtensionApiTest, AStateMayBeChangedByItsReader) {
  Value state = StateFrom(R"({"count": 2})");
  state.Set("count", 3);
  EXPECT_EQ(state.Get("count").AsInt64(), 3);
}

TEST_F(QEXExtensionApiTest, NoStateIsAbsentWithoutAnError) {
  Error error = kUntouched;
  EXPECT_TRUE(api->getSharedEventState("nobody", nullptr, &error).IsAbsent());
  EXPECT_EQ(error, kUntouched);
  EXPECT_TRUE(api->getSharedEventState(std::nullopt, nullptr, nullptr).IsAbsent());
  EXPECT_EQ(services->Calls().back().text, "");
}

TEST_F(QEXExtensionApiTest, AStateThatIsNoJsonIsCode0) {
  const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
  for (const std::string& text : {std::string(), std::string("{"), std::string("text"),
                                  std::string("\xFF"), std::string("\0{}", 3), deep}) {
    services->state = text;
    Error error = kUntouched;
    EXPECT_TRUE(api->getSharedEventState("owner", nullptr, &error).IsAbsent());
    EXPECT_EQ(error, Error("com.velmora.module_errors", 0));
    EXPECT_TRUE(api->getSharedEventState("owner", nullptr, nullptr).IsAbsent());
  }
}

TEST_F(QEXExtensionApiTest, UnregisteringLetsServicesAndExtensionGo) {
  extension->initWithApi(api);
  EXPECT_EQ(extension.use_count(), 2);
  EXPECT_EQ(services.use_count(), 2);
  api->unregisterExtension();
  EXPECT_EQ(OnlyCall().operation, "UnregisterExtension");
  EXPECT_EQ(extension.use_count(), 1);
  EXPECT_EQ(services.use_count(), 1);
}

TEST_F(QEXExtensionApiTest, EveryOperationFailsAfterwards) {
  api->unregisterExtension();
  api->unregisterExtension();
  for (const NamedOperation& operation : Operations()) {
    Error error = kUntouched;
    EXPECT_FALSE(operation.call(*api, &error));
    EXPECT_EQ(error, Error("com.velmora.module_errors", 0));
  }
  EXPECT_EQ(services->Calls().size(), 1U);
}

TEST_F(QEXExtensionApiTest, UnregisteringThrowsNothing) {
  Throw("std.exception");
  EXPECT_NO_THROW(api->unregisterExtension());
  EXPECT_EQ(services.use_count(), 1) << "it is let go all the same";
}

TEST_F(QEXExtensionApiTest, MayBeUsedWhileAnotherThreadUnregisters) {
  std::atomic<bool> isGone{false};
  std::vector<std::thread> threads;
  for (const NamedOperation& operation : Operations()) {
    threads.emplace_back([&] {
      while (!isGone) operation.call(*api, nullptr);
      Error error;
      EXPECT_FALSE(operation.call(*api, &error));
    });
  }
  EXPECT_TRUE(TestSupport::WaitUntil([this] { return services->Calls().size() >= 100; }));
  api->unregisterExtension();
  isGone = true;
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
