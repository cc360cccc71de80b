#include "platform/linux/LinuxSystemLog.h"

#include <array>
#include <cstdio>
#include <exception>
#include <mutex>
#include <string>

#include <errno.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

namespace Platform {
namespace {

// Keeps a closed pipe behind standard error from ending the process: while this lives, SIGPIPE
// waits on this thread, and one that our own write raised goes no further.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard() {
    ::sigemptyset(&brokenPipe_);
    ::sigaddset(&brokenPipe_, SIGPIPE);
    sigset_t pending{};
    ::sigpending(&pending);
    wasPending_ = ::sigismember(&pending, SIGPIPE) == 1;
    ::pthread_sigmask(SIG_BLOCK, &brokenPipe_, &formerMask_);
  }
  ~BrokenPipeGuard() {
    const timespec noTime{};
    if (!wasPending_) {
      while (::sigtimedwait(&brokenPipe_, nullptr, &noTime) < 0 && errno == EINTR) {
      }
    }
    ::pthread_sigmask(SIG_SETMASK, &formerMask_, nullptr);
  }
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

 private:
  sigset_t brokenPipe_{};
  sigset_t formerMask_{};
  bool wasPending_ = false;
};

std::string Prefix() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  ::localtime_r(&now.tv_sec, &local);
  std::array<char, 32> date{};
  std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
  std::array<char, 64> rest{};
  std::snprintf(rest.data(), rest.size(), "[%d:%d] ", static_cast<int>(::getpid()),
                static_cast<int>(::gettid()));
  std::array<char, 8> fraction{};
  std::snprintf(fraction.data(), fraction.size(), ".%03d ",
                static_cast<int>(now.tv_nsec / 1'000'000 % 1000));
  return std::string(date.data()) + fraction.data() + ::program_invocation_short_name + rest.data();
}

// Standard error is one for all logs of the process. Never destroyed: threads may log until the
// process ends.
std::mutex& StandardErrorMutex() {
  static auto* const mutex = new std::mutex;
  return *mutex;
}

// False when standard error takes nothing more.
bool WaitUntilWritable() {
  constexpr int kPatienceInMilliseconds = 100;
  pollfd request{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
  const int ready = ::poll(&request, 1, kPatienceInMilliseconds);
  return ready > 0 || (ready < 0 && errno == EINTR);
}

void WriteToStandardError(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(STDERR_FILENO, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || (errno != EINTR && !(errno == EAGAIN && WaitUntilWritable()))) {
      return;
    }
  }
}

}  // namespace

void LinuxSystemLog::Write(std::string_view line) {
  const int formerErrno = errno;
  try {
    std::string text = Prefix();
    text.reserve(text.size() + line.size() + 1);
    text += line;
    text += '\n';
    const BrokenPipeGuard guard;
    // A pipe takes long texts in several pieces.
    const std::lock_guard lock(StandardErrorMutex());
    WriteToStandardError(text);
  } catch (const std::exception&) {
    // No memory for the line: there is nobody left to tell.
  }
  errno = formerErrno;
}

}  // namespace Platform
