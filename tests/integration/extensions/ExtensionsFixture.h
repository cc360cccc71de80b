#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/Platform/Class.h"
#include "QEXCore_iOS/QEXCore.h"
#include "QEXCore_iOS/QEXExtensionApi.h"
#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "VelmoraCore/Log.h"
#include "bridge/VelmoraCoreBridge.h"
#include "support/FakeHost.h"
#include "support/Guarded.h"
#include "support/LogCapture.h"
#include "support/ScriptedExtension.h"
#include "support/WaitUntil.h"

namespace TestSupport {

// The SDK as an app has it, on the real core, over a device of the test's choice. At the end the
// core is disposed, and nothing of the extensions may be left.
class ExtensionsFixture : public testing::Test {
 protected:
  using Extension = ScriptedExtension<0>;
  using Listener = ScriptedListener<0>;
  using OtherExtension = ScriptedExtension<1>;
  using OtherListener = ScriptedListener<1>;
  static constexpr char kType[] = "test.type";
  static constexpr char kSource[] = "test.source";

  ExtensionsFixture() {
    GetCore();
    Velmora::Log::SetLoggingService(log.LoggingService());
    Forget();
  }
  // While the members of the test are still there, which scripts may use.
  void TearDown() override { GetCore()->Dispose(); }

  ~ExtensionsFixture() override {
    Velmora::VelmoraCoreBridge::ResetInstance();
    Forget();
    EXPECT_EQ(liveExtensions, 0);
    EXPECT_EQ(liveListeners, 0);
    EXPECT_EQ(watchedApis.CountLive(), 0U);
    EXPECT_EQ(watchedEvents.CountLive(), 0U);
    EXPECT_EQ(watchedCoreEvents.CountLive(), 0U);
  }

  static ExtensionEvent NewEvent(const std::string& name, const Platform::Value& data = {},
                                 const std::string& type = kType) {
    return QEXExtensionEvent::extensionEventWithName(name, type, kSource, data, nullptr);
  }
  static bool Dispatch(const std::string& name, const Platform::Value& data = {},
                       const std::string& type = kType) {
    return QEXCore::dispatchEvent(NewEvent(name, data, type), nullptr);
  }

  // The code of the error that registering gives; -1 when there is none.
  template <class Registered>
  static std::int64_t Register() {
    Platform::Error error;
    return QEXCore::registerExtension(Platform::ClassOf<Registered>(), &error) ? -1 : error.Code();
  }

  // Registers a class that listens to kType and kSource, and waits until it does.
  template <int Id>
  static void RegisterListening(const std::string& name,
                                std::function<void(QEXExtension&)> onInit = nullptr) {
    ExtensionScript script;
    script.name = name;
    script.onInit = [onInit = std::move(onInit)](QEXExtension& extension) {
      EXPECT_TRUE(extension.api()->registerListener(Platform::ClassOf<ScriptedListener<Id>>(),
                                                    kType, kSource, nullptr));
      Api<Id>().Set(extension.api());
      if (onInit) onInit(extension);
    };
    ScriptedExtension<Id>::Reset(std::move(script));
    EXPECT_EQ(Register<ScriptedExtension<Id>>(), -1);
    EXPECT_TRUE(WaitUntil([] { return Api<Id>().Get() != nullptr; }));
  }

  // The API of a class that was registered so. Cleared before the end of the test.
  template <int Id>
  static Guarded<std::shared_ptr<QEXExtensionApi>>& Api() {
    static auto& api = *new Guarded<std::shared_ptr<QEXExtensionApi>>;
    return api;
  }
  template <int Id>
  static void Unregister() {
    const std::shared_ptr<QEXExtensionApi> api = Api<Id>().Exchange(nullptr);
    ASSERT_NE(api, nullptr);
    api->unregisterExtension();
  }

  // Returns once every event that was dispatched so far has been handed to the extensions.
  static void Settle() {
    Guarded<bool> isDone{false};
    QEXCore::start([&isDone] { isDone.Set(true); });
    EXPECT_TRUE(WaitUntil([&isDone] { return isDone.Get(); }));
  }

  static bool WaitForNothingLeft() {
    return WaitUntil([] {
      return liveExtensions == 0 && liveListeners == 0 && watchedEvents.CountLive() == 0 &&
             watchedCoreEvents.CountLive() == 0;
    });
  }

  FakeHost host;
  LogCapture log{Velmora::LoggingMode::Debug};

 private:
  static void Forget() {
    Extension::Reset({});
    OtherExtension::Reset({});
    Listener::Reset();
    OtherListener::Reset();
    Api<0>().Set(nullptr);
    Api<1>().Set(nullptr);
  }
};

}  // namespace TestSupport
