#include "support/FakeUrlSession.h"

#include <deque>
#include <utility>

#include "platform/linux/UrlErrors.h"
#include "platform/linux/UrlRequestRules.h"

namespace TestSupport {
namespace {

using Platform::UrlFailure;
using Platform::UrlRequest;
using Answer = FakeUrlSession::Answer;
using Completion = Platform::UrlSession::Completion;

void Complete(const Completion& completion, const Answer& answer) {
  if (!completion) return;
  try {
    completion(answer.response, answer.error);
  } catch (...) {  // NOLINT(bugprone-empty-catch): the contract drops it
  }
}

Answer AnswerTo(const UrlRequest& request, const FakeUrlSession::Server& server) {
  if (const auto refusal = Platform::RefusalOf(request, false)) return {nullptr, *refusal, false};
  return server(request);
}

}  // namespace

struct FakeUrlSession::State {
  struct Task {
    TaskId id = 0;
    UrlRequest request;
    Completion completion;
    bool isCancelled = false;
  };

  std::mutex mutex;
  std::condition_variable changed;
  Server server = [](const UrlRequest&) { return Fail(UrlFailure::NotConnected); };
  std::vector<UrlRequest> requests;
  std::deque<Task> queue;
  std::map<TaskId, Completion> waiting;  // for an answer that never comes
  TaskId running = 0;
  bool isRunningCancelled = false;
  TaskId lastId = 0;
  bool hasThread = false;
  bool isStopping = false;
};

FakeUrlSession::FakeUrlSession() : state_(std::make_shared<State>()) {}

FakeUrlSession::~FakeUrlSession() {
  const std::lock_guard lock(state_->mutex);
  state_->isStopping = true;
  state_->changed.notify_all();
}

void FakeUrlSession::SetServer(Server server) {
  const std::lock_guard lock(state_->mutex);
  state_->server = std::move(server);
}

std::vector<UrlRequest> FakeUrlSession::Requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

Answer FakeUrlSession::Respond(std::int32_t status, const std::string& body,
                               const std::map<std::string, std::string>& headers) {
  auto response = std::make_shared<Platform::UrlResponse>();
  response->statusCode = status;
  response->body = body;
  for (const auto& [name, value] : headers) {
    response->headers[Platform::UsualHeaderName(name)] = value;
  }
  return {response, Platform::Error(), false};
}

Answer FakeUrlSession::Fail(UrlFailure failure) {
  return {nullptr, Platform::MakeUrlError(failure, "The test says so."), false};
}

Answer FakeUrlSession::Never() { return {nullptr, Platform::Error(), true}; }

Platform::UrlSession::TaskId FakeUrlSession::Start(UrlRequest request, Completion completion) {
  const std::lock_guard lock(state_->mutex);
  StartThread();
  state_->requests.push_back(request);
  state_->queue.push_back({++state_->lastId, std::move(request), std::move(completion), false});
  state_->changed.notify_all();
  return state_->lastId;
}

void FakeUrlSession::Cancel(TaskId task) {
  const std::lock_guard lock(state_->mutex);
  state_->isRunningCancelled |= state_->running == task;
  for (State::Task& each : state_->queue) each.isCancelled |= each.id == task;
  const auto waiting = state_->waiting.extract(task);
  if (waiting.empty()) return;
  state_->queue.push_back({task, {}, waiting.mapped(), true});
  state_->changed.notify_all();
}

// The mutex must be held.
void FakeUrlSession::StartThread() {
  if (std::exchange(state_->hasThread, true)) return;
  thread_ = Platform::JoiningThread([state = state_] { Run(state); });
}

void FakeUrlSession::Run(const std::shared_ptr<State>& state) {
  std::unique_lock lock(state->mutex);
  for (;;) {
    state->changed.wait(lock, [&] { return state->isStopping || !state->queue.empty(); });
    if (state->queue.empty()) break;
    State::Task task = std::move(state->queue.front());
    state->queue.pop_front();
    const bool isCancelled = task.isCancelled || state->isStopping;
    const Server server = state->server;
    state->running = task.id;
    state->isRunningCancelled = false;
    lock.unlock();
    const Answer answer =
        isCancelled ? Fail(UrlFailure::Cancelled) : AnswerTo(task.request, server);
    if (!answer.neverComes) Complete(task.completion, answer);
    lock.lock();
    state->running = 0;
    if (!answer.neverComes) continue;
    if (state->isRunningCancelled) {
      state->queue.push_back({task.id, {}, std::move(task.completion), true});
    } else {
      state->waiting.emplace(task.id, std::move(task.completion));
    }
  }
  const auto waiting = std::exchange(state->waiting, {});
  lock.unlock();
  for (const auto& [id, completion] : waiting) Complete(completion, Fail(UrlFailure::Cancelled));
}

}  // namespace TestSupport
