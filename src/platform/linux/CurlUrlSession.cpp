#include "platform/linux/CurlUrlSession.h"

#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

#include <pthread.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/CurlSessionLoop.h"
#include "platform/linux/JoiningThread.h"
#include "platform/linux/OpenSslLifetime.h"

namespace Platform {
namespace {

// The application's signals are none of this thread's business, and a broken pipe must not be one.
class AllSignalsBlocked {
 public:
  AllSignalsBlocked() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former_);
  }
  ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

 private:
  sigset_t former_{};
};

}  // namespace

// The loop and the thread that runs it. The thread keeps the loop too, since the session may go
// inside one of its completions.
class CurlUrlSession::Thread {
 public:
  explicit Thread(CurlUrlSessionOptions options)
      : loop_(std::make_shared<CurlSessionLoop>(std::move(options))) {
    JoiningThread::JoinThoseDone();
    const AllSignalsBlocked blocked;  // new threads inherit it
    thread_ = JoiningThread([loop = loop_] {
      ::pthread_setname_np(::pthread_self(), "QEXUrlSession");
      loop->Run();
    });
  }

  ~Thread() { loop_->Stop(); }

  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  CurlSessionLoop& Loop() { return *loop_; }

 private:
  const std::shared_ptr<CurlSessionLoop> loop_;
  JoiningThread thread_;
};

// The session's thread may still be at work when the process ends.
CurlUrlSession::CurlUrlSession(CurlUrlSessionOptions options) : options_(std::move(options)) {
  KeepOpenSslAtExit();
}

CurlUrlSession::~CurlUrlSession() = default;

UrlSession::TaskId CurlUrlSession::Start(UrlRequest request, Completion completion) {
  return Loop().Start(std::move(request), std::move(completion));
}

void CurlUrlSession::Cancel(TaskId task) {
  const std::lock_guard lock(mutex_);
  if (thread_) thread_->Loop().Cancel(task);
}

CurlSessionLoop& CurlUrlSession::Loop() {
  const std::lock_guard lock(mutex_);
  try {
    if (!thread_) thread_ = std::make_unique<Thread>(options_);
  } catch (const std::system_error& error) {
    throw DeviceError(std::string("Cannot start a thread for requests: ") + error.what());
  }
  return thread_->Loop();
}

}  // namespace Platform
