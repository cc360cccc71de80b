#include "platform/linux/CurlSessionLoop.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/linux/UrlErrors.h"

namespace Platform {
namespace {

Error CancelledError() { return MakeUrlError(UrlFailure::Cancelled, "It was cancelled."); }

// Once for the process and never undone: others in it may use libcurl too.
bool IsCurlReady() {
  static const bool isReady = ::curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return isReady;
}

}  // namespace

CurlSessionLoop::CurlSessionLoop(CurlUrlSessionOptions options) : options_(std::move(options)) {}

CurlSessionLoop::~CurlSessionLoop() = default;

UrlSession::TaskId CurlSessionLoop::Start(UrlRequest request, UrlSession::Completion completion) {
  auto transfer =
      std::make_unique<CurlTransfer>(std::move(request), std::move(completion), Clock::now());
  const std::lock_guard lock(mutex_);
  commands_.starts.emplace_back(++lastTask_, std::move(transfer));
  Wake();
  return lastTask_;
}

void CurlSessionLoop::Cancel(TaskId task) {
  const std::lock_guard lock(mutex_);
  commands_.cancels.push_back(task);
  Wake();
}

void CurlSessionLoop::Stop() {
  const std::lock_guard lock(mutex_);
  commands_.stop = true;
  Wake();
}

// The mutex must be held, so that the handle cannot go meanwhile.
void CurlSessionLoop::Wake() {
  if (awakable_ != nullptr) ::curl_multi_wakeup(awakable_);
  commanded_.notify_one();
}

CurlSessionLoop::Commands CurlSessionLoop::TakeCommands() {
  const std::lock_guard lock(mutex_);
  Commands taken = std::exchange(commands_, {});
  commands_.stop = taken.stop;
  return taken;
}

void CurlSessionLoop::Run() {
  SetUp();
  for (;;) {
    Commands commands = TakeCommands();
    for (auto& [task, transfer] : commands.starts) Begin(task, std::move(transfer));
    for (const TaskId task : commands.cancels) FailTask(task, CancelledError());
    if (commands.stop) break;
    if (multi_) RunTransfers();
    Wait();
  }
  CancelAll();
}

void CurlSessionLoop::SetUp() {
  if (IsCurlReady()) multi_.reset(::curl_multi_init());
  const std::lock_guard lock(mutex_);
  awakable_ = multi_.get();
}

void CurlSessionLoop::RunTransfers() {
  int running = 0;
  ::curl_multi_perform(multi_.get(), &running);
  // Bytes that come while completions run are seen the next time: they must not be late by then.
  const Clock::time_point now = Clock::now();
  FinishThoseDone();
  FailThoseOutOfTime(now);
}

void CurlSessionLoop::Begin(TaskId task, std::unique_ptr<CurlTransfer> transfer) {
  std::optional<Error> refusal;
  try {
    refusal = Admit(*transfer, task);
  } catch (const std::exception& failure) {
    refusal = MakeUrlError(UrlFailure::BadRequest, failure.what());
  }
  if (refusal) {
    transfer->Fail(*refusal);
    return;
  }
  const auto look = looks_.emplace(transfer->Deadline(), task);
  running_.emplace(task, Running{std::move(transfer), look});
}

std::optional<Error> CurlSessionLoop::Admit(CurlTransfer& transfer, TaskId task) {
  if (!multi_) return UrlErrorOfCurl(CURLE_FAILED_INIT, {});
  if (!trust_) trust_.emplace(options_.extraTrustFile);
  const bool allowsCleartext =
      transfer.IsCleartext() && options_.allowsCleartext && options_.allowsCleartext();
  const CurlTransfer::Settings settings{.trust = trust_->Get(),
                                        .largestBody = options_.largestBody,
                                        .allowsCleartext = allowsCleartext};
  if (auto refusal = transfer.Prepare(settings)) return refusal;
  taskOf_.emplace(transfer.Handle(), task);
  if (::curl_multi_add_handle(multi_.get(), transfer.Handle()) != CURLM_OK) {
    taskOf_.erase(transfer.Handle());
    return UrlErrorOfCurl(CURLE_FAILED_INIT, {});
  }
  return std::nullopt;
}

std::unique_ptr<CurlTransfer> CurlSessionLoop::Remove(TaskId task) {
  const auto found = running_.find(task);
  if (found == running_.end()) return nullptr;
  std::unique_ptr<CurlTransfer> transfer = std::move(found->second.transfer);
  looks_.erase(found->second.look);
  running_.erase(found);
  taskOf_.erase(transfer->Handle());
  ::curl_multi_remove_handle(multi_.get(), transfer->Handle());
  return transfer;
}

void CurlSessionLoop::FailTask(TaskId task, const Error& error) {
  if (const auto transfer = Remove(task)) transfer->Fail(error);
}

void CurlSessionLoop::FinishThoseDone() {
  int left = 0;
  while (const CURLMsg* message = ::curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    // The message goes with the handle.
    const CURLcode result = message->data.result;
    if (const auto transfer = Remove(taskOf_.at(message->easy_handle))) {
      transfer->Finish(result, trust_->Fault());
    }
  }
}

void CurlSessionLoop::FailThoseOutOfTime(Clock::time_point now) {
  while (!looks_.empty() && looks_.begin()->first <= now) {
    const TaskId task = looks_.begin()->second;
    Running& running = running_.at(task);
    const Clock::time_point deadline = running.transfer->Deadline();
    if (deadline > now) {
      looks_.erase(running.look);
      running.look = looks_.emplace(deadline, task);
    } else {
      FailTask(task, MakeUrlError(UrlFailure::TimedOut, "It took too long."));
    }
  }
}

void CurlSessionLoop::Wait() {
  if (!multi_) {
    std::unique_lock lock(mutex_);
    commanded_.wait(lock, [this] { return !commands_.starts.empty() || commands_.stop; });
    return;
  }
  constexpr std::chrono::milliseconds kLongest{60'000};
  auto patience = kLongest;
  if (!looks_.empty()) {
    const auto untilLook =
        std::chrono::ceil<std::chrono::milliseconds>(looks_.begin()->first - Clock::now());
    patience = std::clamp(untilLook, std::chrono::milliseconds(0), kLongest);
  }
  ::curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(patience.count()), nullptr);
}

void CurlSessionLoop::CancelAll() {
  {
    const std::lock_guard lock(mutex_);
    awakable_ = nullptr;
  }
  while (!running_.empty()) FailTask(running_.begin()->first, CancelledError());
  for (auto& [task, transfer] : TakeCommands().starts) transfer->Fail(CancelledError());
  multi_.reset();
}

}  // namespace Platform
