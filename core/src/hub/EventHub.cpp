#include "hub/EventHub.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "base/LeftoverThreads.h"
#include "base/LogText.h"
#include "base/SystemClock.h"
#include "hub/EventHubModuleContext.h"
#include "hub/EventRules.h"
#include "hub/EventSize.h"
#include "hub/GuardedCalls.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "EventHub";
constexpr const char* kSourceLocation = "src/hub/EventHub";
constexpr const char* kHubThreadName = "VelmoraEventHub";
constexpr const char* kCallbackThreadName = "VelmoraCallback";
constexpr const char* kClockThreadName = "VelmoraClock";

std::chrono::steady_clock::time_point DeadlineAfter(std::chrono::milliseconds timeout) {
  // Longer waits could not be told apart, and would overflow the clock.
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24);
  return std::chrono::steady_clock::now() +
         std::clamp(timeout, std::chrono::milliseconds::zero(), kLongest);
}

void TraceEvent(const Event& event) {
  if (!Log::Precheck(LoggingMode::Trace)) return;
  Log::Trace(kLogTag, "event %lld: type %s, source %s, name \"%s\"",
             static_cast<long long>(event.GetNumber()), event.GetType().c_str(),
             event.GetSource().c_str(),
             LogText::Readable(event.GetName(), EventRules::kMaxNameLength).c_str());
}

SdkError Disposed(int line) {
  return {ErrorCodes::kEventHubDisposed, "the event hub has been disposed",
          DebugInfo(kSourceLocation, line)};
}

SdkError NameIsTaken(const std::string& name, int line) {
  return {ErrorCodes::kExternalModuleDuplicateModuleName, "there is a module of this name: " + name,
          DebugInfo(kSourceLocation, line)};
}

}  // namespace

std::shared_ptr<EventHub> EventHub::Create(std::shared_ptr<PlatformServicesInterface> services,
                                           EventHubLimits limits, std::shared_ptr<Clock> clock) {
  // The hub's threads own the hub as well; the handle given out ends them, and with them the hub.
  auto hub = std::make_shared<EventHub>(std::move(services), limits, std::move(clock));
  EventHub* const target = hub.get();
  return {target, [hub = std::move(hub)](EventHub*) mutable {
            hub->Dispose(std::chrono::milliseconds::zero());
            hub->JoinAll();
            hub = nullptr;
            LeftoverThreads::JoinThoseDone();
          }};
}

EventHub::EventHub(std::shared_ptr<PlatformServicesInterface> services, EventHubLimits limits,
                   std::shared_ptr<Clock> clock)
    : services_(std::move(services)),
      limits_(limits),
      clock_(clock != nullptr ? std::move(clock)
                              : std::make_shared<SystemClock>([services = services_] {
                                  NameThisThread(*services, kClockThreadName);
                                })),
      responseWaiters_(limits.responseWaiters),
      callbacks_(limits.callbacks),
      queue_(limits.events, limits.requests) {}

void EventHub::AddModule(std::unique_ptr<HubModule> module) {
  const std::string name = module->GetName();
  if (isDisposed_) throw SdkError(Disposed(__LINE__));
  if (isStarted_) {
    throw SdkError(ErrorCodes::kEventHubAlreadyStarted, "the event hub serves a core already",
                   DebugInfo(kSourceLocation, __LINE__));
  }
  if (!modules_.Reserve(name)) throw SdkError(NameIsTaken(name, __LINE__));
  auto context = std::make_unique<ModuleContext>(*this, name);
  module->Attach(*context);
  ownModules_.push_back({name, std::move(context), std::move(module)});
}

void EventHub::Start() {
  if (isStarted_.exchange(true)) return;
  callbacks_.Start({
      [self = shared_from_this()] { self->NameThread(kCallbackThreadName); },
      [self = shared_from_this()](const std::function<void()>& callback) { CallGuarded(callback); },
      [](std::size_t count) {
        Log::Warning(kLogTag, "%zu callbacks were dropped because their queue was full", count);
      },
      nullptr,
  });
  queue_.Start({
      [self = shared_from_this()] { self->NameThread(kHubThreadName); },
      [self = shared_from_this()](const Item& item) { self->Handle(item); },
      [](std::size_t count) {
        Log::Warning(kLogTag, "%zu events were dropped because the queue was full", count);
      },
      nullptr,
  });
}

void EventHub::NameThread(const std::string& name) const { NameThisThread(*services_, name); }

std::optional<SdkError> EventHub::Dispatch(const std::shared_ptr<Event>& event,
                                           ResponseWaiters::Callback onResponse) {
  if (std::optional<SdkError> error = EventRules::Check(event)) return error;
  if (isDisposed_) return Disposed(__LINE__);
  std::optional<std::int64_t> ticket;
  if (onResponse) ticket = responseWaiters_.Add(event->GetId(), std::move(onResponse));
  const Queue::Outcome outcome = Push(ItemOf(event), Queue::Admission::Refusable);
  if (outcome == Queue::Outcome::Accepted) return std::nullopt;
  if (ticket.has_value()) responseWaiters_.Remove(*ticket);
  if (outcome == Queue::Outcome::Stopped) return Disposed(__LINE__);
  return SdkError(ErrorCodes::kEventHubQueueFull, "too many events wait",
                  DebugInfo(kSourceLocation, __LINE__));
}

void EventHub::Post(const std::shared_ptr<Event>& event, ResponseWaiters::Callback onResponse) {
  std::optional<std::int64_t> ticket;
  if (onResponse) ticket = responseWaiters_.Add(event->GetId(), std::move(onResponse));
  const bool isAccepted = PostItem(ItemOf(event), Queue::Admission::Reserved);
  if (!isAccepted && ticket.has_value()) responseWaiters_.Remove(*ticket);
}

void EventHub::PostReport(const std::shared_ptr<Event>& event) {
  PostItem(ItemOf(event), Queue::Admission::CountedWhenRefused);
}

void EventHub::PostAndFollow(const std::shared_ptr<Event>& event, std::function<void()> whenDone) {
  Item item = ItemOf(event);
  item.whenHandled = [this, whenDone = std::move(whenDone)] {
    if (whenDone) CallWhenModulesAreRegistered(whenDone);
  };
  PostItem(std::move(item), Queue::Admission::Reserved);
}

EventHub::Item EventHub::ItemOf(const std::shared_ptr<Event>& event, std::string deafModule) {
  return {event, nullptr, std::move(deafModule), SizeOf(*event)};
}

EventHub::Queue::Outcome EventHub::Push(Item item, Queue::Admission admission) {
  const std::size_t bytes = item.bytes;
  return queue_.Push(std::move(item), admission, bytes);
}

bool EventHub::PostItem(Item item, Queue::Admission admission) {
  const std::string name = item.event->GetName();
  const Queue::Outcome outcome =
      isDisposed_ ? Queue::Outcome::Stopped : Push(std::move(item), admission);
  if (outcome == Queue::Outcome::Stopped) {
    Log::Debug(kLogTag, "\"%s\" was ignored: the event hub has been disposed", name.c_str());
  }
  return outcome == Queue::Outcome::Accepted;
}

void EventHub::PostFromInside(std::shared_ptr<Event> event, const std::string& deafModule) {
  // There are no more answers than requests, which have found their room.
  const bool isAnswer = event->GetRequestId().has_value();
  Push(ItemOf(event, deafModule),
       isAnswer ? Queue::Admission::Reserved : Queue::Admission::CountedWhenRefused);
}

void EventHub::Handle(const Item& item) {
  if (item.event == nullptr) {
    CallGuarded(item.whenHandled);
    return;
  }
  const std::shared_ptr<Event> event = item.event->WithNumber(++lastNumber_);
  TraceEvent(*event);
  if (event->GetNumber() == 1) TellOfFirstEvent(event);
  CallResponseWaiters(event, item.bytes);
  const std::string topic = ExternalModuleHost::Topic(event->GetType(), event->GetSource());
  TellOwnModules(topic, event);
  const std::shared_ptr<const ModuleRegistry::Hosts> hosts = modules_.Active();
  for (const std::shared_ptr<ExternalModuleHost>& host : *hosts) {
    if (item.deafModule.empty() || host->Name() != item.deafModule)
      host->Offer(topic, event, item.bytes);
  }
  if (item.whenHandled) item.whenHandled();
}

void EventHub::CallResponseWaiters(const std::shared_ptr<Event>& event, std::size_t bytes) {
  if (!event->GetRequestId().has_value()) return;
  for (ResponseWaiters::Callback& callback : responseWaiters_.Take(*event->GetRequestId())) {
    Call([callback = std::move(callback), event] { callback(event); }, bytes);
  }
}

void EventHub::TellOfFirstEvent(const std::shared_ptr<Event>& event) {
  for (const OwnModule& own : ownModules_) {
    CallModule(own.name, *event, [&] { own.module->BeforeFirstEvent(event); });
  }
}

void EventHub::TellOwnModules(const std::string& topic, const std::shared_ptr<Event>& event) const {
  const auto tell = [&event](const std::vector<OwnListener>& listeners) {
    for (const OwnListener& listener : listeners) {
      CallModule(listener.module, *event, [&] { listener.handler(event); });
    }
  };
  const auto listeners = ownListeners_.find(topic);
  if (listeners != ownListeners_.end()) tell(listeners->second);
  tell(ownWildcardListeners_);
}

void EventHub::EndOwnModules() const {
  for (const OwnModule& own : ownModules_) {
    TryCatch([&] { own.module->End(); },
             [&](SdkError& error) {
               Log::Error(kLogTag, "module %s: its end failed: %s", own.name.c_str(), error.what());
             });
  }
}

void EventHub::CallWhenModulesAreRegistered(const std::function<void()>& callback) {
  if (*followers_ >= limits_.callbacks.items) {
    callbacks_.CountRefused();
    return;
  }
  ++*followers_;
  const std::shared_ptr<void> place(nullptr, [followers = followers_](void*) { --*followers; });
  const std::shared_ptr<const ModuleRegistry::Hosts> hosts = modules_.Active();
  const auto awaited = std::make_shared<std::atomic<std::size_t>>(hosts->size() + 1);
  // A module keeps this until it is registered; the hub may be gone by then.
  const auto countDown = [weakSelf = weak_from_this(), place, awaited, callback] {
    if (awaited->fetch_sub(1) != 1) return;
    if (const std::shared_ptr<EventHub> self = weakSelf.lock()) self->Call(callback);
  };
  for (const std::shared_ptr<ExternalModuleHost>& host : *hosts) {
    host->CallWhenRegistered(countDown);
  }
  countDown();
}

void EventHub::Call(std::function<void()> callback, std::size_t bytes) {
  callbacks_.Push(std::move(callback), CallbackQueue::Admission::CountedWhenRefused, bytes);
}

std::optional<SdkError> EventHub::RegisterModule(
    const std::shared_ptr<ExternalModuleInterface>& module) {
  const std::string name = module == nullptr ? std::string() : NameOf(*module);
  if (!EventRules::IsModuleName(name)) {
    return SdkError(ErrorCodes::kExternalModuleBadModuleName,
                    "a module name must be 1 to 255 bytes of text",
                    DebugInfo(kSourceLocation, __LINE__));
  }
  if (isDisposed_) return Disposed(__LINE__);
  // Asked now, since from its start on the module belongs to its own thread.
  const std::string version = VersionOf(*module);
  JoinEnded();
  const auto host = std::make_shared<ExternalModuleHost>(module, name, shared_from_this(),
                                                         AcceptedCount(), limits_);
  switch (modules_.Add(host)) {
    case ModuleRegistry::Addition::Closed:
      return Disposed(__LINE__);
    case ModuleRegistry::Addition::Taken:
      return NameIsTaken(name, __LINE__);
    case ModuleRegistry::Addition::MustWait:
      break;
    case ModuleRegistry::Addition::MayStart:
      if (std::optional<SdkError> error = StartModule(host)) return error;
      break;
  }
  Log::Trace(kLogTag, "module %s, version %s, joins", name.c_str(), version.c_str());
  return std::nullopt;
}

std::optional<SdkError> EventHub::StartModule(const std::shared_ptr<ExternalModuleHost>& host) {
  try {
    if (host->Start()) return std::nullopt;
    return Disposed(__LINE__);
  } catch (const std::system_error& error) {
    modules_.Discard(host);
    host->FinishRegistering();
    return SdkError(ErrorCodes::kStdException, error.what(), DebugInfo(kSourceLocation, __LINE__));
  }
}

void EventHub::UnregisterModule(const std::shared_ptr<ExternalModuleHost>& host) {
  if (!modules_.Remove(host)) return;
  // In this order: no state comes after the clearing, and no state of a successor before it, since
  // that one starts when this one's thread has ended.
  host->Deactivate();
  if (states_.Clear(host->Name())) AnnounceSharedState(host->Name());
  host->Stop();
}

void EventHub::OnModuleEnded(const std::shared_ptr<ExternalModuleHost>& host) {
  JoinEnded();
  const std::shared_ptr<ExternalModuleHost> successor = modules_.OnEnded(host);
  // A thread cannot join itself, and the next module may be long in coming.
  callbacks_.Push([this] { JoinEnded(); }, CallbackQueue::Admission::Always);
  if (successor == nullptr) return;
  const std::optional<SdkError> error = StartModule(successor);
  if (error.has_value() && error->GetCode() != ErrorCodes::kEventHubDisposed) {
    Log::Error(kLogTag, "module %s could not be started: %s", successor->Name().c_str(),
               error->what());
    // Who registered it was told that it had been accepted.
    callbacks_.Push([successor, error = *error] { successor->Abandon(error); },
                    CallbackQueue::Admission::Always);
  }
}

void EventHub::JoinEnded() {
  for (const std::shared_ptr<ExternalModuleHost>& ended : modules_.TakeEnded()) ended->Join();
}

bool EventHub::SetSharedState(const std::string& owner, std::shared_ptr<const std::string> json,
                              const std::shared_ptr<Event>& event) {
  const bool isNumbered = event != nullptr && event->GetNumber() > 0;
  const std::int64_t number = isNumbered ? event->GetNumber() : AcceptedCount() + 1;
  return SetSharedStateFrom(number, owner, std::move(json));
}

bool EventHub::SetSharedStateFrom(std::int64_t number, const std::string& owner,
                                  std::shared_ptr<const std::string> json) {
  if (!states_.Set(owner, std::move(json), number)) return false;
  AnnounceSharedState(owner);
  return true;
}

void EventHub::ClearSharedStates(const std::string& owner) {
  states_.Clear(owner);
  AnnounceSharedState(owner);
}

void EventHub::AnnounceSharedState(const std::string& owner) {
  EventData data;
  data.PutString(EventKeys::kStateOwner, owner);
  PostFromInside(
      std::make_shared<Event>("shared state changed", EventTypes::kHub, EventSources::kSharedState,
                              std::make_shared<EventData>(std::move(data))),
      owner);
}

std::shared_ptr<const std::string> EventHub::GetSharedState(
    const std::string& owner, const std::shared_ptr<Event>& event) const {
  if (event == nullptr || event->GetNumber() == 0) return states_.Get(owner, std::nullopt);
  return states_.Get(owner, event->GetNumber());
}

void EventHub::Dispose(std::chrono::milliseconds timeout) {
  if (isDisposed_.exchange(true)) return;
  modules_.Close();
  const auto deadline = DeadlineAfter(timeout);
  if (isStarted_) queue_.WaitUntilIdle(deadline);
  const std::size_t events = queue_.Stop();
  queue_.Join();
  clock_->Stop();
  EndOwnModules();
  const ModuleRegistry::Hosts hosts = modules_.All();
  for (const auto& host : hosts) host->WaitUntilIdle(deadline);
  std::size_t moduleEvents = 0;
  for (const auto& host : hosts) moduleEvents += host->Stop();
  if (isStarted_) callbacks_.WaitUntilIdle(deadline);
  const std::size_t callbacks = callbacks_.Stop();
  responseWaiters_.Clear();
  if (events + moduleEvents + callbacks > 0) {
    Log::Warning(kLogTag,
                 "disposed with work left: %zu events, %zu events of external modules and %zu "
                 "callbacks were dropped",
                 events, moduleEvents, callbacks);
  }
  // Said first: a call that never returns would keep it from being said.
  JoinAll();
}

void EventHub::JoinAll() {
  queue_.Join();
  for (const auto& host : modules_.All()) host->Join();
  callbacks_.Join();
}

}  // namespace Velmora
