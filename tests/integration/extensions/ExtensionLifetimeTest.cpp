#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ExtensionsFixture.h"
#include "VelmoraCore/Core.h"

namespace {

using Platform::ClassOf;
using testing::ElementsAre;
using TestSupport::ExtensionScript;
using TestSupport::Guarded;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;

// Counts what is alive: extensions and listeners by their constructors, APIs and events by pointers
// that do not own them.
class ExtensionLifetimeTest : public TestSupport::ExtensionsFixture {
 protected:
  void RegisterWatched(ExtensionScript script = {}) {
    script.onInit = [this](QEXExtension& extension) {
      api.Set(extension.api());
      extension.api()->registerListener(ClassOf<Listener>(), kType, kSource, nullptr);
      extension.api()->registerWildcardListener(ClassOf<OtherListener>(), nullptr);
    };
    Extension::Reset(std::move(script));
    EXPECT_EQ(Register<Extension>(), -1);
    Settle();
    for (int count = 0; count < 10; ++count) EXPECT_TRUE(Dispatch("event"));
    EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 10; }));
    EXPECT_EQ(TestSupport::liveExtensions, 1);
    EXPECT_EQ(TestSupport::liveListeners, 2);
    EXPECT_EQ(TestSupport::watchedApis.CountLive(), 1U);
  }

  // Everything that was made for the extension has gone.
  static bool WaitForAllGone() {
    return WaitForNothingLeft() &&
           WaitUntil([] { return TestSupport::watchedApis.CountLive() == 0; });
  }

  Guarded<std::weak_ptr<QEXExtensionApi>> api;
};

TEST_F(ExtensionLifetimeTest, UnregisteringLeavesNothing) {
  RegisterWatched();
  api.Get().lock()->unregisterExtension();
  EXPECT_TRUE(WaitForAllGone());
  EXPECT_THAT(Extension::calls.Get(), testing::Contains("unregister"));
}

TEST_F(ExtensionLifetimeTest, DisposingTheCoreLeavesNothing) {
  RegisterWatched();
  GetCore()->Dispose();
  EXPECT_TRUE(WaitForAllGone());
  EXPECT_THAT(Extension::calls.Get(), testing::Contains("unregister"));
}

TEST_F(ExtensionLifetimeTest, AnOverrideThatForgetsTheBaseClassLeavesNothing) {
  RegisterWatched({.callsBaseOnUnregister = false});
  GetCore()->Dispose();
  EXPECT_TRUE(WaitForAllGone());
}

TEST_F(ExtensionLifetimeTest, AnOverrideThatThrowsLeavesNothing) {
  RegisterWatched({.onUnregister = [](QEXExtension&) { throw std::runtime_error("a bug"); }});
  log.ExpectLine(LogLevel::Error, "EventHub", testing::HasSubstr("OnUnregister failed"));
  api.Get().lock()->unregisterExtension();
  EXPECT_TRUE(WaitForAllGone());
  EXPECT_EQ(Extension::calls.Get().back(), "unregister");
}

TEST_F(ExtensionLifetimeTest, WhatTheAppKeepsIsOfNoHarm) {
  RegisterWatched();
  const std::shared_ptr<QEXExtensionApi> kept = api.Get().lock();
  GetCore()->Dispose();
  EXPECT_TRUE(WaitForNothingLeft());
  EXPECT_FALSE(kept->clearSharedEventStates(nullptr));
  kept->unregisterExtension();
}

TEST_F(ExtensionLifetimeTest, AListenerIsMadeWhenTheHubHasAcceptedItAndGoesWhenItIsReplaced) {
  RegisterWatched();
  EXPECT_FALSE(
      api.Get().lock()->registerListener(ClassOf<Listener>(), "no good", kSource, nullptr));
  EXPECT_EQ(TestSupport::liveListeners, 2);
  EXPECT_TRUE(api.Get().lock()->registerListener(ClassOf<Listener>(), kType, kSource, nullptr));
  EXPECT_TRUE(Dispatch("event"));
  EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 11; }));
  EXPECT_EQ(TestSupport::liveListeners, 2);
}

TEST_F(ExtensionLifetimeTest, UsingTheApiWhileItLeavesIsClean) {
  log.AllowLines(LogLevel::Warning, "EventHub", testing::EndsWith("because the queue was full"));
  for (int round = 0; round < 20; ++round) {
    Listener::Reset();
    RegisterListening<0>("test.leaving");
    const auto kept = Api<0>().Get();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
      threads.emplace_back([&kept] {
        while (kept->setSharedEventState({{"key", "value"}}, nullptr, nullptr)) {
          kept->getSharedEventState("test.leaving", nullptr, nullptr);
          kept->registerListener(ClassOf<Listener>(), kType, kSource, nullptr);
          Dispatch("event");
          WaitUntil([] { return Listener::CountHeard() > 0; });
        }
      });
    }
    EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() > 0; }));
    Unregister<0>();
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(WaitForNothingLeft());
  }
}

}  // namespace
