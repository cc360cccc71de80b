#include <memory>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "extension/ExternalModuleListenerInterfaceWrapper.h"
#include "support/ScriptedExtension.h"

namespace {

using Platform::ClassOf;
using testing::ElementsAre;
using testing::IsEmpty;
using Listener = TestSupport::ScriptedListener<>;

std::shared_ptr<Velmora::Event> NewEvent(const std::string& name) {
  return std::make_shared<Velmora::Event>(name, "t", "s");
}

class ExternalModuleListenerInterfaceWrapperTest : public testing::Test {
 protected:
  ExternalModuleListenerInterfaceWrapperTest() { Listener::Reset(); }
  ~ExternalModuleListenerInterfaceWrapperTest() override {
    listener = nullptr;
    EXPECT_EQ(TestSupport::liveListeners, 0);
    EXPECT_EQ(extension.use_count(), 1);
  }

  const std::shared_ptr<QEXExtension> extension = std::make_shared<QEXExtension>();
  std::shared_ptr<Velmora::ExternalModuleListenerInterface> listener =
      Velmora::CreateExternalModuleListenerInterface(extension, ClassOf<Listener>());
};

TEST_F(ExternalModuleListenerInterfaceWrapperTest, HasNoInstanceBeforeItIsRegistered) {
  EXPECT_EQ(TestSupport::liveListeners, 0);
  listener->Hear(NewEvent("early"));
  EXPECT_THAT(Listener::heard.Get(), IsEmpty());
}

TEST_F(ExternalModuleListenerInterfaceWrapperTest, TheInstanceHearsEventsAndKnowsItsExtension) {
  std::shared_ptr<QEXExtension> seen;
  Listener::Reset([&seen](QEXExtensionListener& self, const auto&) { seen = self.extension(); });
  listener->OnRegistered();
  EXPECT_EQ(TestSupport::liveListeners, 1);
  listener->Hear(NewEvent("one"));
  listener->Hear(NewEvent("two"));
  EXPECT_THAT(Listener::heard.Get(), ElementsAre("one", "two"));
  EXPECT_EQ(seen, extension);
  seen = nullptr;
  Listener::Reset();
}

TEST_F(ExternalModuleListenerInterfaceWrapperTest, UnregisteringLetsInstanceAndExtensionGo) {
  listener->OnRegistered();
  listener->OnUnregistered();
  EXPECT_EQ(TestSupport::liveListeners, 0);
  EXPECT_EQ(extension.use_count(), 1);
  listener->Hear(NewEvent("late"));
  listener->OnUnregistered();
  EXPECT_THAT(Listener::heard.Get(), IsEmpty());
}

TEST_F(ExternalModuleListenerInterfaceWrapperTest, WhatTheListenerThrowsReachesTheCore) {
  Listener::Reset([](QEXExtensionListener&, const auto&) { throw std::runtime_error("a bug"); });
  listener->OnRegistered();
  EXPECT_THROW(listener->Hear(NewEvent("event")), std::runtime_error);
  Listener::Reset();
}

class DecliningListener : public QEXExtensionListener {
 public:
  std::shared_ptr<QEXExtensionListener> init() override { return nullptr; }
  void hear(const std::shared_ptr<QEXExtensionEvent>&) override { ADD_FAILURE() << "heard"; }
};

TEST_F(ExternalModuleListenerInterfaceWrapperTest, WithoutAnInstanceEventsAreDropped) {
  for (const Platform::Class& listenerClass : {ClassOf<std::string>(), ClassOf<QEXExtension>(),
                                               ClassOf<DecliningListener>(), Platform::Class()}) {
    const auto deaf = Velmora::CreateExternalModuleListenerInterface(extension, listenerClass);
    deaf->OnRegistered();
    deaf->Hear(NewEvent("event"));
    deaf->OnUnregistered();
  }
}

}  // namespace
