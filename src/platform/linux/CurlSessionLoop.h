#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <curl/curl.h>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "platform/linux/CurlTransfer.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/TrustStore.h"

namespace Platform {

// Runs every request of one session, on the thread that calls Run. The other operations are safe
// from any thread and return at once.
class CurlSessionLoop {
 public:
  explicit CurlSessionLoop(CurlUrlSessionOptions options);
  ~CurlSessionLoop();
  CurlSessionLoop(const CurlSessionLoop&) = delete;
  CurlSessionLoop& operator=(const CurlSessionLoop&) = delete;

  UrlSession::TaskId Start(UrlRequest request, UrlSession::Completion completion);
  void Cancel(UrlSession::TaskId task);

  // Run cancels what is under way and returns. Nothing may be started after it.
  void Stop();

  void Run();

 private:
  using TaskId = UrlSession::TaskId;
  using Clock = CurlTransfer::Clock;
  struct CleanUpMulti {
    void operator()(CURLM* multi) const { ::curl_multi_cleanup(multi); }
  };
  struct Commands {
    std::vector<std::pair<TaskId, std::unique_ptr<CurlTransfer>>> starts;
    std::vector<TaskId> cancels;
    bool stop = false;
  };

  Commands TakeCommands();
  void Wake();
  void SetUp();
  void RunTransfers();
  void Begin(TaskId task, std::unique_ptr<CurlTransfer> transfer);
  std::optional<Error> Admit(CurlTransfer& transfer, TaskId task);
  std::unique_ptr<CurlTransfer> Remove(TaskId task);
  void FailTask(TaskId task, const Error& error);
  void FinishThoseDone();
  // Those that were out of time at `now`.
  void FailThoseOutOfTime(Clock::time_point now);
  void Wait();
  void CancelAll();

  const CurlUrlSessionOptions options_;

  std::mutex mutex_;
  std::condition_variable commanded_;  // for a loop that libcurl cannot wake
  Commands commands_;                  // guarded by mutex_
  TaskId lastTask_ = 0;                // guarded by mutex_
  CURLM* awakable_ = nullptr;          // guarded by mutex_: multi_, while it can be woken

  // When to look at a transfer next: not later than its deadline, which moves on with every byte.
  using Looks = std::multimap<Clock::time_point, TaskId>;
  struct Running {
    std::unique_ptr<CurlTransfer> transfer;
    Looks::iterator look;
  };

  // What follows belongs to Run's thread.
  std::unique_ptr<CURLM, CleanUpMulti> multi_;
  std::optional<TrustStore> trust_;
  std::unordered_map<TaskId, Running> running_;
  std::unordered_map<CURL*, TaskId> taskOf_;
  Looks looks_;
};

}  // namespace Platform
