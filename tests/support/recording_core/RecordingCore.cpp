#include "support/recording_core/RecordingCore.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include <pthread.h>

#include "support/Guarded.h"

namespace TestSupport {

namespace {

using Call = RecordingCore::Call;
using Thrown = RecordingCore::Thrown;
using Delivery = RecordingCore::Delivery;
using ErrorFunction = std::function<void(Velmora::SdkError&)>;

Velmora::SdkError MakeError(const std::string& code) {
  return {code, "scripted", Velmora::DebugInfo("tests/support/RecordingCore", 1)};
}

struct Script {
  std::map<std::string, Thrown> thrown;
  std::function<void()> onCreate;
  std::string identities;
  Velmora::MobilePrivacyStatus privacyStatus = Velmora::MobilePrivacyStatus::Unknown;
  std::string errorCode;
  std::shared_ptr<Velmora::Event> response;
  Delivery delivery = Delivery::AtOnce;
};

struct Journal {
  Guarded<std::vector<Call>> calls;
  Guarded<std::weak_ptr<Velmora::Core>> lastCreated;
  Guarded<Script> script;
  Guarded<std::vector<std::jthread>> deliveries;
};

Journal& TheJournal() {
  static Journal journal;
  return journal;
}

Script CurrentScript() { return TheJournal().script.Get(); }

void ChangeScript(const std::function<void(Script&)>& change) { TheJournal().script.With(change); }

void Throw(Thrown thrown) {
  switch (thrown) {
    case Thrown::SdkError:
      throw MakeError("test.scripted");
    case Thrown::RuntimeError:
      throw std::runtime_error("scripted");
    case Thrown::Int:
      throw 7;
  }
}

// Notes the call, and throws where the script says so.
void Record(std::string operation, const Velmora::Core* core, Call call = {}) {
  const Script script = CurrentScript();
  const auto thrown = script.thrown.find(operation);
  call.operation = std::move(operation);
  call.core = core;
  call.thread = std::this_thread::get_id();
  TheJournal().calls.With([&](auto& calls) { calls.push_back(std::move(call)); });
  if (thrown != script.thrown.end()) Throw(thrown->second);
}

void Deliver(std::function<void()> callback) {
  if (CurrentScript().delivery == Delivery::AtOnce) return callback();
  std::jthread thread([callback = std::move(callback)] {
    pthread_setname_np(pthread_self(), "RecordingCore");
    callback();
  });
  TheJournal().deliveries.With([&](auto& deliveries) { deliveries.push_back(std::move(thread)); });
}

// True when the script has the operation refused, which `onError` has then been told.
bool Refuse(ErrorFunction&& onError) {
  const std::string code = CurrentScript().errorCode;
  if (code.empty()) return false;
  Velmora::SdkError error = MakeError(code);
  if (onError) onError(error);
  return true;
}

}  // namespace

std::vector<Call> RecordingCore::Calls() { return TheJournal().calls.Get(); }

std::vector<Call> RecordingCore::TakeCalls() { return TheJournal().calls.Exchange({}); }

std::vector<std::string> RecordingCore::Operations() {
  std::vector<std::string> operations;
  for (const Call& call : Calls()) operations.push_back(call.operation);
  return operations;
}

std::shared_ptr<Velmora::Core> RecordingCore::LastCreated() {
  return TheJournal().lastCreated.Get().lock();
}

void RecordingCore::Reset() {
  WaitForDeliveries();
  TheJournal().script.Set({});
  TheJournal().calls.Set({});
  TheJournal().lastCreated.Set({});
}

void RecordingCore::ThrowFrom(const std::string& operation, Thrown thrown) {
  ChangeScript([&](Script& script) { script.thrown[operation] = thrown; });
}

void RecordingCore::ThrowFromNothing() {
  ChangeScript([](Script& script) { script.thrown.clear(); });
}

void RecordingCore::OnCreate(std::function<void()> hook) {
  ChangeScript([&](Script& script) { script.onCreate = std::move(hook); });
}

void RecordingCore::SetIdentities(std::string identities) {
  ChangeScript([&](Script& script) { script.identities = std::move(identities); });
}

void RecordingCore::SetPrivacyStatus(Velmora::MobilePrivacyStatus status) {
  ChangeScript([&](Script& script) { script.privacyStatus = status; });
}

void RecordingCore::RejectWith(std::string errorCode) {
  ChangeScript([&](Script& script) { script.errorCode = std::move(errorCode); });
}

void RecordingCore::RespondWith(std::shared_ptr<Velmora::Event> response) {
  ChangeScript([&](Script& script) { script.response = std::move(response); });
}

void RecordingCore::SetDelivery(Delivery delivery) {
  ChangeScript([&](Script& script) { script.delivery = delivery; });
}

void RecordingCore::WaitForDeliveries() {
  // Each jthread joins as it is destroyed, outside the lock.
  const std::vector<std::jthread> finished = TheJournal().deliveries.Exchange({});
}

}  // namespace TestSupport

namespace Velmora {

using TestSupport::CurrentScript;
using TestSupport::Deliver;
using TestSupport::Record;
using TestSupport::Refuse;
using Call = TestSupport::RecordingCore::Call;

struct Core::Impl {
  std::shared_ptr<PlatformServicesInterface> services;
};

Core::Core(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Core::~Core() = default;

std::shared_ptr<Core> Core::Create(const std::shared_ptr<PlatformServicesInterface>& services,
                                   const std::shared_ptr<EventHub>& eventHub) {
  Call call;
  call.services = services;
  call.eventHub = eventHub;
  Record("Create", nullptr, std::move(call));
  if (const auto hook = CurrentScript().onCreate) hook();

  auto impl = std::make_unique<Impl>();
  impl->services = services;
  std::shared_ptr<Core> core(new Core(std::move(impl)));
  TestSupport::TheJournal().lastCreated.Set(core);
  return core;
}

void Core::Dispose() { Record("Dispose", this); }

void Core::ConfigureWithAppId(const std::string& appId) const {
  Record("ConfigureWithAppId", this, {.text = appId});
}

void Core::ConfigureWithFileInPath(const std::string& path) const {
  Record("ConfigureWithFileInPath", this, {.text = path});
}

void Core::UpdateConfiguration(std::map<std::string, std::shared_ptr<Variant>> configuration) {
  Record("UpdateConfiguration", this, {.variants = std::move(configuration)});
}

void Core::GetSDKIdentities(const std::function<void(const std::string&)>& callback) const {
  Record("GetSDKIdentities", this);
  Deliver([callback, identities = CurrentScript().identities] { callback(identities); });
}

void Core::GetPrivacyStatus(const std::function<void(const MobilePrivacyStatus&)>& callback) const {
  Record("GetPrivacyStatus", this);
  Deliver([callback, status = CurrentScript().privacyStatus] { callback(status); });
}

void Core::SetPrivacyStatus(MobilePrivacyStatus status) const {
  Record("SetPrivacyStatus", this, {.privacyStatus = status});
}

void Core::RegisterExternalModule(const std::shared_ptr<ExternalModuleInterface>& module,
                                  std::function<void(SdkError&)> onError) {
  Record("RegisterExternalModule", this, {.module = module});
  Refuse(std::move(onError));
}

void Core::Start(std::function<void()> callback) {
  Record("Start", this);
  if (callback) Deliver(std::move(callback));
}

void Core::CollectPii(std::map<std::string, std::string> data) {
  Record("CollectPii", this, {.strings = std::move(data)});
}

void Core::LifecyclePause() { Record("LifecyclePause", this); }

void Core::LifecycleStart(std::map<std::string, std::string> additionalContextData) {
  Record("LifecycleStart", this, {.strings = std::move(additionalContextData)});
}

void Core::SetAdvertisingIdentifier(const std::string& identifier) {
  Record("SetAdvertisingIdentifier", this, {.text = identifier});
}

void Core::SetPushIdentifier(const std::string& identifier) {
  Record("SetPushIdentifier", this, {.text = identifier});
}

void Core::Track(const std::shared_ptr<EventData>& data) const {
  Record("Track", this, {.eventData = data ? data->Copy() : nullptr});
}

void Core::DispatchEvent(const std::shared_ptr<Event>& event,
                         std::function<void(SdkError&)> onError) {
  Record("DispatchEvent", this, {.event = event});
  Refuse(std::move(onError));
}

void Core::DispatchEventWithResponseCallback(
    const std::shared_ptr<Event>& event,
    std::function<void(const std::shared_ptr<Event>&)> onResponse,
    std::function<void(SdkError&)> onError) {
  Record("DispatchEventWithResponseCallback", this, {.event = event});
  const std::shared_ptr<Event> response = CurrentScript().response;
  if (Refuse(std::move(onError)) || !response || !onResponse) return;
  Deliver([onResponse = std::move(onResponse), response] { onResponse(response); });
}

void Core::DispatchResponseEvent(const std::shared_ptr<Event>& response,
                                 const std::shared_ptr<Event>& request,
                                 std::function<void(SdkError&)> onError) {
  Record("DispatchResponseEvent", this, {.event = response, .requestEvent = request});
  Refuse(std::move(onError));
}

void Core::CollectData(std::map<std::string, std::shared_ptr<Variant>> data) {
  Record("CollectData", this, {.variants = std::move(data)});
}

void Core::DownloadRules() { Record("DownloadRules", this); }

}  // namespace Velmora
