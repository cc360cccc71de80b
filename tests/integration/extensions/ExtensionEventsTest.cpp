#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ExtensionsFixture.h"
#include "unit/bridge/PublicOperations.h"
#include "unit/core/hub/Gate.h"

namespace {

using Platform::ClassOf;
using Platform::Error;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;
using TestSupport::ExtensionEvent;
using TestSupport::Guarded;
using TestSupport::LogLevel;
using TestSupport::ScriptedListener;
using TestSupport::WaitUntil;

class ExtensionEventsTest : public TestSupport::ExtensionsFixture {
 protected:
  static std::int64_t CodeOf(const ExtensionEvent& event) {
    Error error;
    return QEXCore::dispatchEvent(event, &error) ? -1 : error.Code();
  }
};

TEST_F(ExtensionEventsTest, AListenerHearsWhatWasDispatchedInOrder) {
  Guarded<Platform::Value> data;
  Listener::Reset([&data](auto&, const ExtensionEvent& event) {
    if (event->eventName() == "second") data.Set(event->eventData());
  });
  RegisterListening<0>("test.listening");
  EXPECT_TRUE(Dispatch("first"));
  EXPECT_TRUE(Dispatch("second", {{"sku", "A-17"}, {"count", 2}}));
  EXPECT_TRUE(Dispatch("elsewhere", {}, "other.type"));
  EXPECT_TRUE(Dispatch("third"));
  EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 3; }));
  EXPECT_THAT(Listener::heard.Get(), ElementsAre("first", "second", "third"));
  EXPECT_EQ(data.Get().Get("sku").AsString(), "A-17");
  EXPECT_EQ(data.Get().Get("count").AsInt64(), 2);
}

TEST_F(ExtensionEventsTest, EventsThatTheHubRefusesHaveTheirCodes) {
  EXPECT_EQ(CodeOf(nullptr), 7);
  EXPECT_EQ(CodeOf(NewEvent("n", {}, "")), 3);
  EXPECT_EQ(CodeOf(NewEvent("n", {}, "with blanks")), 3);
  EXPECT_EQ(CodeOf(QEXExtensionEvent::extensionEventWithName("n", "t", "", {}, nullptr)), 4);
  EXPECT_EQ(CodeOf(QEXExtensionEvent::extensionEventWithName(std::nullopt, "t", "s", {}, nullptr)),
            -1);
  Platform::Value many = Platform::Value::Array();
  for (int count = 0; count < 1'000'001; ++count) many.Append(1);
  EXPECT_EQ(CodeOf(NewEvent("n", {{"many", many}})), 5);
  EXPECT_FALSE(QEXCore::dispatchResponseEvent(NewEvent("n"), nullptr, nullptr));
}

TEST_F(ExtensionEventsTest, AListenerIsRefusedByTheCodesOfTheHub) {
  RegisterListening<0>("test.listening");
  const auto api = Api<0>().Get();
  Error error;
  EXPECT_FALSE(api->registerListener(ClassOf<Listener>(), "", "s", &error));
  EXPECT_EQ(error.Code(), 3);
  EXPECT_FALSE(api->registerListener(ClassOf<Listener>(), "t", std::nullopt, &error));
  EXPECT_EQ(error.Code(), 4);
}

TEST_F(ExtensionEventsTest, AWildcardListenerHearsWhatTheFacadeAsksFor) {
  RegisterListening<0>("test.curious", [](QEXExtension& extension) {
    EXPECT_TRUE(extension.api()->registerWildcardListener(ClassOf<OtherListener>(), nullptr));
  });
  EXPECT_TRUE(Dispatch("event"));
  QEXCore::trackAction("buy", {});
  EXPECT_TRUE(WaitUntil([] {
    const auto names = OtherListener::heard.Get();
    return std::find(names.begin(), names.end(), "prepared") != names.end();
  }));
  EXPECT_THAT(OtherListener::heard.Get(), Contains("event"));
  EXPECT_THAT(OtherListener::heard.Get(), Contains("track"));
  EXPECT_THAT(Listener::heard.Get(), ElementsAre("event"));
}

TEST_F(ExtensionEventsTest, AnotherListenerForTheSameEventsTakesTheFirstOnesPlace) {
  RegisterListening<0>("test.listening");
  EXPECT_TRUE(Dispatch("one"));
  EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 1; }));
  EXPECT_TRUE(Api<0>().Get()->registerListener(ClassOf<OtherListener>(), kType, kSource, nullptr));
  EXPECT_TRUE(Dispatch("two"));
  EXPECT_TRUE(WaitUntil([] { return OtherListener::CountHeard() == 1; }));
  EXPECT_EQ(Listener::CountHeard(), 1U);
  EXPECT_EQ(TestSupport::liveListeners, 1);
}

TEST_F(ExtensionEventsTest, AListenerThatIsNoneHearsNothingAndHarmsNobody) {
  RegisterListening<0>("test.listening", [](QEXExtension& extension) {
    EXPECT_TRUE(extension.api()->registerListener(ClassOf<std::string>(), "t", "s", nullptr));
    EXPECT_TRUE(extension.api()->registerWildcardListener({}, nullptr));
  });
  EXPECT_TRUE(Dispatch("event"));
  EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 1; }));
}

TEST_F(ExtensionEventsTest, AListenerThatThrowsIsLoggedAndToldAndTheHubGoesOn) {
  Listener::Reset([](auto&, const ExtensionEvent& event) {
    if (event->eventName() == "bad") throw std::runtime_error("a bug");
  });
  RegisterListening<0>("test.failing");
  RegisterListening<1>("test.sound");
  log.ExpectLine(LogLevel::Error, "EventHub",
                 "module test.failing: Hear failed: std.exception: a bug");
  EXPECT_TRUE(Dispatch("bad"));
  EXPECT_TRUE(Dispatch("good"));
  EXPECT_TRUE(
      WaitUntil([] { return Listener::CountHeard() == 2 && OtherListener::CountHeard() == 2; }));
  EXPECT_THAT(Extension::calls.Get(), Contains("error com.velmora.module_errors 0"));
  EXPECT_THAT(OtherExtension::calls.Get(), testing::Not(Contains(StartsWith("error"))));
}

class PlainExtension : public QEXExtension {
 public:
  std::shared_ptr<QEXExtension> init() override {
    api()->registerListener(ClassOf<ScriptedListener<0>>(), "test.type", "test.source", nullptr);
    return QEXExtension::init();
  }
  std::optional<std::string> name() const override { return "test.plain"; }
};

TEST_F(ExtensionEventsTest, WithoutAnOverrideAnUnexpectedErrorIsOneLineOnThePlatformsLog) {
  Listener::Reset([](auto&, const auto&) { throw 7; });
  EXPECT_EQ(Register<PlainExtension>(), -1);
  log.ExpectLine(LogLevel::Error, "EventHub", testing::HasSubstr("Hear failed"));
  EXPECT_TRUE(Dispatch("bad"));
  EXPECT_TRUE(WaitUntil([&] { return !host.systemLog->Lines().empty(); }));
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre(StartsWith("[VXSDK ERROR]: ")));
}

TEST_F(ExtensionEventsTest, AnAnswerReachesTheOneWhoAskedOnce) {
  Listener::Reset([](auto&, const ExtensionEvent& event) {
    for (int time = 0; time < 2; ++time) {
      EXPECT_TRUE(QEXCore::dispatchResponseEvent(
          NewEvent("answer", {{"to", *event->eventName()}}, "other.type"), event, nullptr));
    }
  });
  RegisterListening<0>("test.answering");
  Guarded<std::vector<std::string>> answers;
  for (const std::string& question : {std::string("one"), std::string("two")}) {
    EXPECT_TRUE(QEXCore::dispatchEventWithResponseCallback(
        NewEvent(question),
        [&answers, question](const ExtensionEvent& answer) {
          answers.With([&](auto& all) {
            all.push_back(question + ": " + answer->eventData().Get("to").AsString());
          });
        },
        nullptr));
  }
  EXPECT_TRUE(QEXCore::dispatchEventWithResponseCallback(NewEvent("three"), nullptr, nullptr));
  EXPECT_TRUE(WaitUntil([] { return Listener::CountHeard() == 3; }));
  Settle();
  EXPECT_TRUE(WaitUntil([&] { return answers.Get().size() == 2; }));
  EXPECT_THAT(answers.Get(), ElementsAre("one: one", "two: two"));
}

TEST_F(ExtensionEventsTest, EveryOperationMayBeCalledFromInsideAListener) {
  OtherExtension::Reset({.name = "test.inner"});
  Listener::Reset([](QEXExtensionListener& self, const ExtensionEvent& event) {
    if (event->eventName() != "go") return;
    const auto api = self.extension()->api();
    EXPECT_TRUE(api->registerListener(ClassOf<OtherListener>(), "late.type", kSource, nullptr));
    EXPECT_TRUE(api->setSharedEventState({{"heard", "go"}}, event, nullptr));
    EXPECT_FALSE(api->getSharedEventState("test.listening", event, nullptr).IsAbsent());
    EXPECT_TRUE(Dispatch("again"));
    EXPECT_TRUE(Dispatch("late", {}, "late.type"));
    EXPECT_EQ(Register<OtherExtension>(), -1);
    QEXCore::trackAction("heard", {});
    QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedIn);
    QEXCore::getPrivacyStatus([](auto) {});
    QEXCore::getSdkIdentities([](const auto&) {});
    QEXCore::start([] {});
    EXPECT_TRUE(api->clearSharedEventStates(nullptr));
  });
  RegisterListening<0>("test.listening");
  EXPECT_TRUE(Dispatch("go"));
  EXPECT_TRUE(
      WaitUntil([] { return Listener::CountHeard() == 2 && OtherListener::CountHeard() == 1; }));
  EXPECT_THAT(Listener::heard.Get(), ElementsAre("go", "again"));
  Settle();
  EXPECT_THAT(OtherExtension::calls.Get(), Contains("init"));
}

TEST_F(ExtensionEventsTest, EveryOperationOfTheFacadeMayBeCalledFromInsideAListener) {
  OtherExtension::Reset({.name = "test.inner"});
  Guarded<std::vector<std::string>> answers;
  Listener::Reset([&answers](auto&, const ExtensionEvent& event) {
    if (event->eventName() == "go") {
      for (const auto& operation : TestSupport::PublicOperations()) operation.call();
      EXPECT_TRUE(QEXCore::dispatchEvent(NewEvent("heard later"), nullptr));
      EXPECT_TRUE(QEXCore::dispatchEventWithResponseCallback(
          NewEvent("question"),
          [&answers](const ExtensionEvent& answer) {
            answers.With([&](auto& all) { all.push_back(*answer->eventName()); });
          },
          nullptr));
      EXPECT_EQ(Register<OtherExtension>(), -1);
    } else if (event->eventName() == "question") {
      EXPECT_TRUE(
          QEXCore::dispatchResponseEvent(NewEvent("answer", {}, "other.type"), event, nullptr));
    }
  });
  RegisterListening<0>("test.listening");
  // What the operations lead to, none of which is there.
  for (const char* tag :
       {"Analytics", "Configuration", "Core", "Identity", "Lifecycle", "NativeNetworkService",
        "Rules", "RemoteFileManager: ", "SystemInfoService"}) {
    for (const LogLevel level : {LogLevel::Debug, LogLevel::Warning, LogLevel::Error}) {
      log.AllowLines(level, tag, testing::_);
    }
  }
  EXPECT_TRUE(Dispatch("go"));
  EXPECT_TRUE(WaitUntil([&] { return answers.Get().size() == 1; }));
  Settle();
  EXPECT_THAT(Listener::heard.Get(), ElementsAre("go", "heard later", "question"));
  EXPECT_THAT(answers.Get(), ElementsAre("answer"));
  EXPECT_THAT(OtherExtension::calls.Get(), Contains("init"));
  EXPECT_EQ(QEXCore::extensionVersion(), "1.0.0");
}

TEST_F(ExtensionEventsTest, AListenerMayUnregisterItsExtension) {
  Listener::Reset([](QEXExtensionListener& self, const ExtensionEvent&) {
    const auto api = self.extension()->api();
    api->unregisterExtension();
    Error error;
    EXPECT_FALSE(api->clearSharedEventStates(&error));
    EXPECT_EQ(error, Error("com.velmora.module_errors", 0));
  });
  RegisterListening<0>("test.leaving");
  Api<0>().Set(nullptr);
  for (const char* name : {"one", "two", "three"}) EXPECT_TRUE(Dispatch(name));
  EXPECT_TRUE(WaitForNothingLeft());
  EXPECT_THAT(Listener::heard.Get(), ElementsAre("one"));
}

TEST_F(ExtensionEventsTest, ThousandsOfQueuedEventsGoWithTheExtension) {
  const auto gate = std::make_shared<Gate>();
  Listener::Reset([gate](auto&, const auto&) { gate->Pass(); });
  RegisterListening<0>("test.slow");
  RegisterListening<1>("test.quick");
  for (int count = 0; count < 5'000; ++count) EXPECT_TRUE(Dispatch("event"));
  gate->AwaitArrivals();
  EXPECT_TRUE(WaitUntil([] { return OtherListener::CountHeard() == 5'000; }))
      << "a slow extension delays nobody else";
  Unregister<0>();
  EXPECT_EQ(TestSupport::liveListeners, 2) << "the call that is under way still ends";
  gate->Open();
  EXPECT_TRUE(WaitUntil([] { return TestSupport::liveExtensions == 1; }));
  EXPECT_EQ(Listener::CountHeard(), 1U);
}

TEST_F(ExtensionEventsTest, TwoExtensionsExchangeManyEvents) {
  constexpr int kExchanged = 100'000;
  constexpr int kInFlight = 100;
  std::atomic<int> sent{0};
  const auto pass = [&sent](const char* type) {
    if (++sent <= kExchanged) {
      EXPECT_TRUE(Dispatch("ball", {{"count", sent.load()}}, type));
    }
  };
  ScriptedListener<2>::Reset([&](auto&, const auto&) { pass("test.pong"); });
  ScriptedListener<3>::Reset([&](auto&, const auto&) { pass("test.ping"); });
  RegisterListening<0>("test.one", [](QEXExtension& extension) {
    extension.api()->registerListener(ClassOf<ScriptedListener<2>>(), "test.ping", kSource,
                                      nullptr);
  });
  RegisterListening<1>("test.two", [](QEXExtension& extension) {
    extension.api()->registerListener(ClassOf<ScriptedListener<3>>(), "test.pong", kSource,
                                      nullptr);
  });
  for (int count = 0; count < kInFlight; ++count) pass("test.ping");
  EXPECT_TRUE(WaitUntil(
      [] {
        return ScriptedListener<2>::CountHeard() + ScriptedListener<3>::CountHeard() == kExchanged;
      },
      std::chrono::seconds(100)));
  // They take turns with each ball, of which some may be dropped in the end.
  EXPECT_NEAR(static_cast<double>(ScriptedListener<2>::CountHeard()),
              static_cast<double>(ScriptedListener<3>::CountHeard()), kInFlight);
}

}  // namespace
