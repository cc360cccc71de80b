#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ExtensionsFixture.h"

namespace {

using Platform::ClassOf;
using testing::Contains;
using testing::ElementsAre;
using TestSupport::ExtensionScript;
using TestSupport::LogLevel;
using TestSupport::ScriptedExtension;
using TestSupport::WaitUntil;

class ExtensionRegistrationTest : public TestSupport::ExtensionsFixture {};

TEST_F(ExtensionRegistrationTest, AnExtensionIsInitialisedOnceItHasBeenAccepted) {
  TestSupport::Guarded<std::thread::id> thread;
  Extension::Reset({.onInit = [&](QEXExtension& extension) {
    EXPECT_NE(extension.api(), nullptr);
    thread.Set(std::this_thread::get_id());
  }});
  EXPECT_EQ(Register<Extension>(), -1);
  Settle();
  EXPECT_THAT(Extension::calls.Get(), Contains("init"));
  EXPECT_EQ(Extension::calls.Get().front(), "name");
  EXPECT_NE(thread.Get(), std::this_thread::get_id());
  EXPECT_EQ(TestSupport::liveExtensions, 1);
}

TEST_F(ExtensionRegistrationTest, TheCallbackOfStartComesAfterEveryInit) {
  for (int round = 0; round < 20; ++round) {
    Extension::Reset({.name = "test." + std::to_string(round)});
    EXPECT_EQ(Register<Extension>(), -1);
    Settle();
    EXPECT_THAT(Extension::calls.Get(), Contains("init"));
  }
}

TEST_F(ExtensionRegistrationTest, NamesThatTheCoreRefusesAreCode1) {
  for (const std::string& name :
       {std::string(" "), std::string("a\nb"), std::string("\xFF"), std::string(256, 'x')}) {
    Extension::Reset({.name = name});
    EXPECT_EQ(Register<Extension>(), 1);
  }
  for (const std::optional<std::string>& name :
       {std::optional<std::string>(), std::optional<std::string>("")}) {
    Extension::Reset({.name = name});
    EXPECT_EQ(Register<Extension>(), 1);
  }
  EXPECT_EQ(TestSupport::liveExtensions, 0);
}

TEST_F(ExtensionRegistrationTest, ANameThatIsTakenIsCode2AndLeavesNothing) {
  EXPECT_EQ(Register<Extension>(), -1);
  EXPECT_EQ(Register<Extension>(), 2);
  EXPECT_EQ(Register<OtherExtension>(), 2);
  for (const char* name : {"configuration", "identity", "lifecycle", "analytics", "rules"}) {
    OtherExtension::Reset({.name = name});
    EXPECT_EQ(Register<OtherExtension>(), 2);
  }
  Settle();
  EXPECT_EQ(TestSupport::liveExtensions, 1);
}

TEST_F(ExtensionRegistrationTest, AnExtensionMayComeBackManyTimes) {
  for (int round = 0; round < 50; ++round) {
    RegisterListening<0>("test.returning");
    EXPECT_EQ(Register<Extension>(), 2);
    Listener::Reset();
    EXPECT_TRUE(Dispatch("event"));
    EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 1; }));
    Unregister<0>();
  }
  EXPECT_TRUE(WaitForNothingLeft());
}

template <int... Ids>
std::vector<std::thread> RegisterOnThreads(std::atomic<int>& accepted,
                                           std::integer_sequence<int, Ids...> /*ids*/) {
  (ScriptedExtension<Ids>::Reset({.name = "test." + std::to_string(Ids)}), ...);
  std::vector<std::thread> threads;
  const auto add = [&](Platform::Class extensionClass) {
    threads.emplace_back([&accepted, extensionClass] {
      for (int round = 0; round < 25; ++round) {
        if (QEXCore::registerExtension(extensionClass, nullptr)) ++accepted;
      }
    });
  };
  (add(ClassOf<ScriptedExtension<Ids>>()), ...);
  return threads;
}

TEST_F(ExtensionRegistrationTest, WorksFromEightThreadsAtOnce) {
  constexpr int kThreads = 8;
  std::atomic<int> accepted{0};
  for (std::thread& thread :
       RegisterOnThreads(accepted, std::make_integer_sequence<int, kThreads>())) {
    thread.join();
  }
  Settle();
  EXPECT_EQ(accepted, kThreads);
  EXPECT_EQ(TestSupport::liveExtensions, kThreads);
}

TEST_F(ExtensionRegistrationTest, OfOneNameFromEightThreadsOneIsAccepted) {
  std::atomic<int> accepted{0};
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&] { ++(Register<Extension>() == -1 ? accepted : refused); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(accepted, 1);
  EXPECT_EQ(refused, 7);
  EXPECT_EQ(TestSupport::liveExtensions, 1);
}

TEST_F(ExtensionRegistrationTest, AnExtensionThatInitialisesToNothingLeavesItsNameFree) {
  Extension::Reset({.initGivesNothing = true});
  EXPECT_EQ(Register<Extension>(), -1);
  EXPECT_TRUE(WaitForNothingLeft());
  EXPECT_TRUE(WaitUntil([] { return Register<OtherExtension>() == -1; }));
}

TEST_F(ExtensionRegistrationTest, AnInitThatThrowsIsLoggedAndTold) {
  Extension::Reset({.onInit = [](QEXExtension&) { throw std::runtime_error("a bug"); }});
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module test.extension: OnRegister failed: std.exception: a bug");
  EXPECT_EQ(Register<Extension>(), -1);
  Settle();
  EXPECT_THAT(Extension::calls.Get(), Contains("error com.velmora.module_errors 0"));
}

TEST_F(ExtensionRegistrationTest, AnExtensionMayRegisterAnotherFromItsInit) {
  OtherExtension::Reset({.name = "test.inner"});
  Extension::Reset({.onInit = [](QEXExtension&) { EXPECT_EQ(Register<OtherExtension>(), -1); }});
  EXPECT_EQ(Register<Extension>(), -1);
  EXPECT_TRUE(WaitUntil([] {
    const auto calls = OtherExtension::calls.Get();
    return std::find(calls.begin(), calls.end(), "init") != calls.end();
  }));
}

TEST_F(ExtensionRegistrationTest, AfterTheCoreWasDisposedTheErrorIsUnknown) {
  GetCore()->Dispose();
  log.AllowLines(LogLevel::Debug, "Core", testing::StartsWith("refused: event_hub.disposed"));
  EXPECT_EQ(Register<Extension>(), 0);
  EXPECT_FALSE(Dispatch("late"));
  EXPECT_EQ(TestSupport::liveExtensions, 0);
}

}  // namespace
