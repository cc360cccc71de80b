#include "hub/ExternalModuleHost.h"

#include <utility>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "hub/EventHub.h"
#include "hub/ExternalModuleServices.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "EventHub";

}  // namespace

ExternalModuleHost::ExternalModuleHost(std::shared_ptr<ExternalModuleInterface> module,
                                       std::string name, const std::shared_ptr<EventHub>& hub,
                                       std::int64_t acceptedCount, const EventHubLimits& limits)
    : module_(std::move(module)),
      name_(std::move(name)),
      hub_(hub),
      acceptedCount_(acceptedCount),
      mostListeners_(limits.moduleListeners),
      queue_(limits.moduleEvents) {
  Do([this] { Register(); });
}

std::string ExternalModuleHost::Topic(const std::string& type, const std::string& source) {
  // Neither holds a control character, so that the two cannot run into one another.
  return type + '\n' + source;
}

bool ExternalModuleHost::Start() {
  return queue_.Start({
      [self = shared_from_this()] { self->NameThread(); },
      [self = shared_from_this()](Task task) { self->Handle(std::move(task)); },
      [self = shared_from_this()](std::size_t count) {
        Log::Warning(kLogTag, "module %s: %zu events were dropped because its queue was full",
                     self->name_.c_str(), count);
      },
      [self = shared_from_this()] { self->End(); },
  });
}

void ExternalModuleHost::Abandon(SdkError error) {
  TellOfError(error);
  module_ = nullptr;
}

void ExternalModuleHost::NameThread() const {
  if (const std::shared_ptr<EventHub> hub = Hub()) hub->NameThread(name_);
}

void ExternalModuleHost::Handle(Task task) {
  if (task.event != nullptr) {
    Hear(task.event);
  } else {
    task.action();
  }
}

void ExternalModuleHost::Register() {
  isTold_ = true;
  Guard("OnRegister", [this] {
    module_->OnRegister(std::make_shared<ExternalModuleServices>(weak_from_this()));
  });
  FinishRegistering();
}

void ExternalModuleHost::FinishRegistering() {
  std::vector<ListenerPointer> added;
  std::vector<std::function<void()>> whenRegistered;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    isRegistering_ = false;
    added.swap(addedWhileRegistering_);
    whenRegistered.swap(whenRegistered_);
  }
  for (const ListenerPointer& listener : added) {
    if (IsActive()) TellRegistered(listener);
  }
  for (const std::function<void()>& done : whenRegistered) done();
}

void ExternalModuleHost::CallWhenRegistered(std::function<void()> done) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (isRegistering_) {
      whenRegistered_.push_back(std::move(done));
      return;
    }
  }
  done();
}

void ExternalModuleHost::Offer(const std::string& topic, const std::shared_ptr<Event>& event,
                               std::size_t bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  // Which events a module wants that is still being registered, only its listeners will tell.
  if (isRegistering_ || !wildcardListeners_.empty() || listeners_.contains(topic)) {
    queue_.Push({event, nullptr}, SerialQueue<Task>::Admission::CountedWhenRefused, bytes);
  }
}

ExternalModuleHost::Addition ExternalModuleHost::AddListener(
    std::shared_ptr<ExternalModuleListenerInterface> listener, const std::string& topic) {
  const std::shared_ptr<EventHub> hub = Hub();
  const auto added = std::make_shared<Listener>();
  added->target = std::move(listener);
  ListenerPointer replaced;  // goes after the lock
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!IsActive() || hub == nullptr) return Addition::Left;
  if (listenerCount_ >= mostListeners_) return Addition::Full;
  ++listenerCount_;
  added->firstNumber = (isRegistering_ ? acceptedCount_ : hub->AcceptedCount()) + 1;
  if (!topic.empty() && !isRegistering_ && listeners_.contains(topic)) {
    // The one before hears what waits already, so that no event falls between the two.
    Do([this, topic, added] { Replace(topic, added); });
    return Addition::Added;
  }
  if (topic.empty()) {
    wildcardListeners_.push_back(added);
  } else {
    replaced = std::exchange(listeners_[topic], added);
  }
  if (!isRegistering_) {
    Do([this, added] { TellRegistered(added); });
    return Addition::Added;
  }
  // Events may wait already that these listeners are to hear; they are told before those.
  if (replaced != nullptr) --listenerCount_;
  std::erase(addedWhileRegistering_, replaced);
  addedWhileRegistering_.push_back(added);
  return Addition::Added;
}

void ExternalModuleHost::Do(std::function<void()> action) {
  queue_.Push({nullptr, std::move(action)}, SerialQueue<Task>::Admission::Always);
}

void ExternalModuleHost::Replace(const std::string& topic, const ListenerPointer& added) {
  ListenerPointer replaced;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!IsActive()) return;
    replaced = std::exchange(listeners_[topic], added);
    --listenerCount_;
    added->firstNumber = replaced->firstNumber;
  }
  TellUnregistered(replaced);
  TellRegistered(added);
}

void ExternalModuleHost::TellRegistered(const ListenerPointer& listener) {
  listener->isTold = true;
  Guard("OnRegistered", [&listener] { listener->target->OnRegistered(); });
}

void ExternalModuleHost::TellUnregistered(const ListenerPointer& listener) {
  if (!std::exchange(listener->isTold, false)) return;
  Guard("OnUnregistered", [&listener] { listener->target->OnUnregistered(); });
}

void ExternalModuleHost::Hear(const std::shared_ptr<Event>& event) {
  for (const ListenerPointer& listener : ListenersFor(*event)) {
    if (!IsActive()) return;
    Guard("Hear", [&listener, &event] { listener->target->Hear(event); });
  }
}

std::vector<ExternalModuleHost::ListenerPointer> ExternalModuleHost::ListenersFor(
    const Event& event) {
  std::vector<ListenerPointer> found;
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto addWanting = [&](const ListenerPointer& listener) {
    if (listener->isTold && listener->firstNumber <= event.GetNumber()) found.push_back(listener);
  };
  const auto listener = listeners_.find(Topic(event.GetType(), event.GetSource()));
  if (listener != listeners_.end()) addWanting(listener->second);
  for (const ListenerPointer& wildcard : wildcardListeners_) addWanting(wildcard);
  return found;
}

void ExternalModuleHost::Deactivate() {
  const std::lock_guard<std::mutex> lock(mutex_);
  isActive_ = false;
}

bool ExternalModuleHost::WhileActive(const std::function<void()>& action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!IsActive()) return false;
  action();
  return true;
}

std::size_t ExternalModuleHost::Stop() {
  Deactivate();
  return queue_.Stop();
}

bool ExternalModuleHost::WaitUntilIdle(Deadline deadline) { return queue_.WaitUntilIdle(deadline); }

void ExternalModuleHost::Join() { queue_.Join(); }

void ExternalModuleHost::End() {
  for (const ListenerPointer& listener : TakeListeners()) TellUnregistered(listener);
  if (isTold_) {
    // The last call: the module is not told what it throws.
    TryCatch([this] { module_->OnUnregister(); },
             [this](SdkError& error) { LogFailure("OnUnregister", error); });
  }
  module_ = nullptr;
  if (const std::shared_ptr<EventHub> hub = Hub()) hub->OnModuleEnded(shared_from_this());
}

std::vector<ExternalModuleHost::ListenerPointer> ExternalModuleHost::TakeListeners() {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<ListenerPointer> taken = std::exchange(wildcardListeners_, {});
  for (const auto& [topic, listener] : listeners_) taken.push_back(listener);
  listeners_.clear();
  return taken;
}

void ExternalModuleHost::Guard(const char* operation, const std::function<void()>& call) {
  TryCatch(call, [this, operation](SdkError& error) {
    LogFailure(operation, error);
    TellOfError(error);
  });
}

void ExternalModuleHost::TellOfError(SdkError& error) {
  TryCatch([this, &error] { module_->OnUnexpectedError(error); },
           [this](SdkError& again) { LogFailure("OnUnexpectedError", again); });
}

void ExternalModuleHost::LogFailure(const char* operation, const SdkError& error) const {
  Log::Error(kLogTag, "module %s: %s failed: %s", name_.c_str(), operation, error.what());
}

}  // namespace Velmora
