#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "QEXCore_iOS/Platform/UrlSession.h"

namespace Platform {

class CurlSessionLoop;

struct CurlUrlSessionOptions {
  // A PEM file of certificate authorities to trust beside the system's; empty for none.
  std::string extraTrustFile;
  // The largest body that a response may have, decoded, in bytes.
  std::uint64_t largestBody = std::uint64_t{512} << 20;
  // Asked on the session's thread when a request is not for https; empty: never allowed.
  std::function<bool()> allowsCleartext;
};

// Requests by libcurl, all of them on one thread named "QEXUrlSession", which starts with the first
// request and is joined by the destructor. Certificate authorities are read once, for the first
// request. Requests made in the child of a fork come to nothing.
//
// A body that came whole, but whose content coding ends too early, is delivered as far as libcurl
// could undo it.
class CurlUrlSession final : public UrlSession {
 public:
  explicit CurlUrlSession(CurlUrlSessionOptions options = {});
  ~CurlUrlSession() override;
  CurlUrlSession(const CurlUrlSession&) = delete;
  CurlUrlSession& operator=(const CurlUrlSession&) = delete;

  TaskId Start(UrlRequest request, Completion completion) override;
  void Cancel(TaskId task) override;

 private:
  class Thread;

  CurlSessionLoop& Loop();

  const CurlUrlSessionOptions options_;
  std::mutex mutex_;
  std::unique_ptr<Thread> thread_;  // guarded by mutex_
};

}  // namespace Platform
