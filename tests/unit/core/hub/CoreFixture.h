#pragma once

#include <functional>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/Core.h"
#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/TryCatch.h"
#include "hub/EventHub.h"
#include "platform/linux/JoiningThread.h"
#include "services/database/NativeDatabaseService.h"
#include "services/datastore/NativeLocalStorageService.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "services/json/NativeJsonUtilityService.h"
#include "services/network/NativeNetworkService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeCryptoService.h"
#include "services/system/NativeSystemInfoService.h"
#include "services/system/NativeUrlService.h"
#include "support/FakeHost.h"
#include "support/FakePlatformServices.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "unit/core/hub/Gate.h"
#include "unit/core/hub/HubDoubles.h"

namespace EventKeys = Velmora::EventKeys;
namespace EventSources = Velmora::EventSources;
namespace EventTypes = Velmora::EventTypes;

// A core on real services, over a device that keeps its user defaults in memory and a clock that
// the test sets, and an external module that hears everything.
class CoreFixture : public testing::Test {
 protected:
  CoreFixture() {
    services->crypto = Velmora::CreateNativeCryptoService();
    services->fileSystem = Velmora::CreateNativeFileSystemService();
    services->jsonUtility = Velmora::CreateNativeJsonUtilityService();
    services->localStorage = Velmora::CreateNativeLocalStorageService();
    services->systemInfo = Velmora::CreateNativeSystemInfoService();
    services->database = Velmora::CreateNativeDatabaseService(services->systemInfo);
    services->network = Velmora::CreateNativeNetworkService(services->systemInfo);
    services->remoteFileManager = Velmora::CreateNativeRemoteFileManagerService(
        services->network, services->fileSystem, services->systemInfo);
    services->url = Velmora::CreateNativeUrlService();
    services->logging = log.LoggingService();
    host.bundle->SetInfo("CFBundleName", "Sample");
    threadJoiner.session = host.urlSession;
  }

  void StartCore() {
    core = Velmora::Core::Create(services, Velmora::EventHub::Create(services, {}, clock));
    listener = std::make_shared<RecordingListener>();
    witness = std::make_shared<RecordingModule>("witness");
    witness->onRegister = [hearing = listener](const ModuleServices& moduleServices) {
      moduleServices->RegisterWildcardListener(hearing);
    };
    EXPECT_EQ(Register(witness), "");
    EXPECT_TRUE(witness->WaitForCalls({"register"}));
  }

  // Handles all that waits, and what the modules make of it. The core is disposed then.
  void Finish() { core->Dispose(); }

  // The core starts anew, as after a restart of the app.
  void Restart() {
    Finish();
    core = nullptr;
    StartCore();
  }

  // The code of the error that the core reports; empty when it reports none.
  std::string CodeReportedBy(
      const std::function<void(std::function<void(Velmora::SdkError&)>)>& operation) {
    std::string code;
    operation([&code](Velmora::SdkError& error) { code = error.GetCode(); });
    return code;
  }
  std::string Register(const std::shared_ptr<Velmora::ExternalModuleInterface>& module) {
    return CodeReportedBy(
        [&](auto onError) { core->RegisterExternalModule(module, std::move(onError)); });
  }
  std::string Dispatch(const EventPointer& event) {
    return CodeReportedBy([&](auto onError) { core->DispatchEvent(event, std::move(onError)); });
  }

  // The first event of this type and source that the witness has heard; fails when there is none.
  EventPointer Heard(const std::string& type, const std::string& source) const {
    for (const EventPointer& event : listener->Heard()) {
      if (event->GetType() == type && event->GetSource() == source) return event;
    }
    ADD_FAILURE() << "no event of type " << type << " and source " << source << " was heard";
    return NewEvent("missing");
  }
  std::size_t CountHeard(const std::string& type, const std::string& source) const {
    std::size_t count = 0;
    for (const EventPointer& event : listener->Heard()) {
      if (event->GetType() == type && event->GetSource() == source) ++count;
    }
    return count;
  }

  // An event's data as compact text, "none" without data.
  static std::string DataOf(const EventPointer& event) {
    return event->GetData() == nullptr
               ? "none"
               : TextOf(Velmora::Variant::FromVariantMap(event->GetData()->GetAll()));
  }
  static std::string TextOf(const std::shared_ptr<Velmora::Variant>& value) {
    switch (value->GetKind()) {
      case Velmora::VariantKind::String:
        return '"' + value->GetString() + '"';
      case Velmora::VariantKind::VariantMap: {
        std::string text;
        for (const auto& [key, member] : value->GetVariantMap()) {
          text += (text.empty() ? "" : ",") + key + ":" + TextOf(member);
        }
        return '{' + text + '}';
      }
      default:
        return value->IsNumericKind() ? std::to_string(value->GetLong()) : "?";
    }
  }

  // The newest shared state, its blanks and line ends taken out; "none" when there is none.
  std::string StateOf(const std::string& owner, const EventPointer& event = nullptr) const {
    const std::shared_ptr<std::string> state =
        witness->Services()->GetSharedEventState(owner, event);
    if (state == nullptr) return "none";
    std::erase_if(*state, [](char byte) { return byte == ' ' || byte == '\n'; });
    return *state;
  }

  // Waits until everything that was asked for so far has been handled, and heard by the witness.
  void Settle() {
    const std::size_t heard = CountHeard(EventTypes::kHub, EventSources::kBooted);
    core->Start(nullptr);
    EXPECT_TRUE(TestSupport::WaitUntil(
        [&] { return CountHeard(EventTypes::kHub, EventSources::kBooted) > heard; }));
  }

  // Goes last. A session whose last owner was its own thread leaves that thread to be joined.
  struct ThreadJoiner {
    std::weak_ptr<TestSupport::FakeUrlSession> session;

    ~ThreadJoiner() {
      EXPECT_TRUE(TestSupport::WaitUntil(
          [this] { return session.expired() && Platform::JoiningThread::JoinThoseDone(); }));
    }
  };

  ThreadJoiner threadJoiner;
  TestSupport::FakeHost host;
  TestSupport::LogCapture log{Velmora::LoggingMode::Debug};
  std::shared_ptr<TestSupport::FakePlatformServices> services =
      std::make_shared<TestSupport::FakePlatformServices>();
  const std::shared_ptr<TestSupport::ManualClock> clock =
      std::make_shared<TestSupport::ManualClock>();
  std::shared_ptr<RecordingListener> listener;
  std::shared_ptr<RecordingModule> witness;
  std::shared_ptr<Velmora::Core> core;
};
