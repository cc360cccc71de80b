#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "ExtensionsFixture.h"

namespace {

using Platform::ClassOf;
using Platform::Error;
using Platform::Value;
using TestSupport::ExtensionEvent;
using TestSupport::Guarded;
using TestSupport::WaitUntil;

const Error kUntouched("untouched", 42);

class ExtensionStatesTest : public TestSupport::ExtensionsFixture {
 protected:
  // What the other extension reads of the first one's state.
  static Value StateAt(const ExtensionEvent& event, Error* error = nullptr) {
    return Api<1>().Get()->getSharedEventState("test.owner", event, error);
  }
  static Value NewestState(Error* error = nullptr) { return StateAt(nullptr, error); }

  void RegisterBoth() {
    OtherListener::Reset([this](auto&, const ExtensionEvent& event) {
      events.With([&](auto& all) { all.push_back(event); });
    });
    RegisterListening<0>("test.owner");
    RegisterListening<1>("test.reader");
  }
  std::size_t CountEvents() const {
    return events.With([](const auto& all) { return all.size(); });
  }

  Guarded<std::vector<ExtensionEvent>> events;
};

TEST_F(ExtensionStatesTest, EachEventSeesTheStateAsItStoodThen) {
  constexpr std::size_t kEvents = 100;
  Listener::Reset([](QEXExtensionListener& self, const ExtensionEvent& event) {
    EXPECT_TRUE(self.extension()->api()->setSharedEventState({{"at", *event->eventName()}}, event,
                                                             nullptr));
  });
  RegisterBoth();
  for (std::size_t count = 0; count < kEvents; ++count)
    EXPECT_TRUE(Dispatch(std::to_string(count)));
  EXPECT_TRUE(
      WaitUntil([&] { return CountEvents() == kEvents && Listener::CountHeard() == kEvents; }));
  Settle();
  EXPECT_TRUE(
      WaitUntil([] { return NewestState().Get("at").AsString() == std::to_string(kEvents - 1); }));
  for (const ExtensionEvent& event : events.Get()) {
    EXPECT_EQ(StateAt(event).Get("at").AsString(), *event->eventName());
  }
}

TEST_F(ExtensionStatesTest, AnEventBeforeTheStateSeesNone) {
  RegisterBoth();
  EXPECT_TRUE(Dispatch("before"));
  EXPECT_TRUE(WaitUntil([&] { return CountEvents() == 1; }));
  EXPECT_TRUE(Api<0>().Get()->setSharedEventState({{"key", "value"}}, nullptr, nullptr));
  EXPECT_TRUE(Dispatch("after"));
  EXPECT_TRUE(WaitUntil([&] { return CountEvents() == 2; }));
  Error error = kUntouched;
  EXPECT_TRUE(StateAt(events.Get()[0], &error).IsAbsent());
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(StateAt(events.Get()[1]).Get("key").AsString(), "value");
}

TEST_F(ExtensionStatesTest, APendingStateIsAbsentWithCode0UntilItIsSet) {
  RegisterBoth();
  EXPECT_TRUE(Api<0>().Get()->setSharedEventState({}, nullptr, nullptr));
  Error error = kUntouched;
  EXPECT_TRUE(NewestState(&error).IsAbsent());
  EXPECT_EQ(error, Error("com.velmora.module_errors", 0));
  EXPECT_TRUE(Api<0>().Get()->setSharedEventState(Value::Dictionary(), nullptr, nullptr));
  EXPECT_TRUE(NewestState().IsDictionary());
}

TEST_F(ExtensionStatesTest, StatesGoWhenTheyAreClearedAndWhenTheirOwnerLeaves) {
  RegisterBoth();
  EXPECT_TRUE(Api<0>().Get()->setSharedEventState({{"key", "value"}}, nullptr, nullptr));
  EXPECT_FALSE(NewestState().IsAbsent());
  EXPECT_TRUE(Api<0>().Get()->clearSharedEventStates(nullptr));
  Error error = kUntouched;
  EXPECT_TRUE(NewestState(&error).IsAbsent());
  EXPECT_EQ(error, kUntouched);
  EXPECT_TRUE(Api<0>().Get()->setSharedEventState({{"key", "value"}}, nullptr, nullptr));
  Unregister<0>();
  EXPECT_TRUE(NewestState(&error).IsAbsent());
  EXPECT_EQ(error, kUntouched);
}

TEST_F(ExtensionStatesTest, AStateThatIsTooLongIsCode5AndTheOneBeforeStays) {
  RegisterBoth();
  EXPECT_TRUE(Api<0>().Get()->setSharedEventState({{"text", std::string(10'000'000, 'x')}}, nullptr,
                                                  nullptr));
  Error error;
  EXPECT_FALSE(Api<0>().Get()->setSharedEventState({{"text", std::string(20'000'000, 'x')}},
                                                   nullptr, &error));
  EXPECT_EQ(error.Code(), 5);
  EXPECT_EQ(NewestState().Get("text").AsString().size(), 10'000'000U);
}

TEST_F(ExtensionStatesTest, TheStatesOfTheCoresOwnModulesCanBeRead) {
  RegisterBoth();
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedOut);
  Settle();
  const Value state = Api<1>().Get()->getSharedEventState("configuration", nullptr, nullptr);
  EXPECT_EQ(state.Get("privacyStatus").AsInt64(), 1);
}

TEST_F(ExtensionStatesTest, OthersHearThatAStateHasChanged) {
  std::atomic<bool> wasTold{false};
  Listener::Reset([&wasTold](auto&, const ExtensionEvent& event) {
    if (event->eventData().Get("stateOwner").AsString() == "test.owner") wasTold = true;
  });
  RegisterListening<0>("test.watching", [](QEXExtension& extension) {
    extension.api()->registerListener(ClassOf<Listener>(), "hub", "sharedState", nullptr);
  });
  RegisterListening<1>("test.owner");
  EXPECT_TRUE(Api<1>().Get()->setSharedEventState({{"key", "value"}}, nullptr, nullptr));
  EXPECT_TRUE(WaitUntil([&] { return wasTold.load(); }));
}

}  // namespace
