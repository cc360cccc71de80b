#pragma once

#include <future>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "support/WaitUntil.h"

namespace TestSupport {

// What a completion was told.
struct UrlOutcome {
  std::shared_ptr<const Platform::UrlResponse> response;
  Platform::Error error;
};

inline Platform::UrlRequest RequestFor(const std::string& url) {
  Platform::UrlRequest request;
  request.url = url;
  return request;
}

// A request on its way.
class PendingUrl {
 public:
  PendingUrl(Platform::UrlSession& session, Platform::UrlRequest request) {
    auto promise = std::make_shared<std::promise<UrlOutcome>>();
    outcome_ = promise->get_future();
    task_ = session.Start(std::move(request),
                          [promise](std::shared_ptr<const Platform::UrlResponse> response,
                                    const Platform::Error& error) {
                            promise->set_value({std::move(response), error});
                          });
  }

  Platform::UrlSession::TaskId Task() const { return task_; }

  bool IsOver() const {
    return outcome_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  }

  // Fails the test, and gives nothing, when it is not over in time.
  UrlOutcome Wait(std::chrono::milliseconds deadline = 3 * kDefaultDeadline) {
    if (outcome_.wait_for(deadline) != std::future_status::ready) {
      ADD_FAILURE() << "the request was not over in time";
      return {};
    }
    return outcome_.get();
  }

 private:
  std::future<UrlOutcome> outcome_;
  Platform::UrlSession::TaskId task_ = 0;
};

inline UrlOutcome Fetch(Platform::UrlSession& session, Platform::UrlRequest request) {
  return PendingUrl(session, std::move(request)).Wait();
}
inline UrlOutcome Fetch(Platform::UrlSession& session, const std::string& url) {
  return Fetch(session, RequestFor(url));
}

// An outcome that is this failure, without a response.
MATCHER_P(FailsWith, failure, "") {
  if (arg.response != nullptr) {
    *result_listener << "which is a response with status " << arg.response->statusCode << " and "
                     << arg.response->body.size() << " bytes";
    return false;
  }
  *result_listener << "whose error is " << arg.error.Domain() << ' ' << arg.error.Code() << " \""
                   << arg.error.LocalizedDescription() << '"';
  return arg.error.Domain() == Platform::kUrlErrorDomain &&
         arg.error.Code() == static_cast<std::int64_t>(failure) &&
         !arg.error.LocalizedDescription().empty();
}

// An outcome that is a response with this status and body.
MATCHER_P2(Brings, status, body, "") {
  if (arg.response == nullptr) {
    *result_listener << "whose error is \"" << arg.error.LocalizedDescription() << '"';
    return false;
  }
  *result_listener << "with status " << arg.response->statusCode << " and "
                   << arg.response->body.size() << " bytes";
  return arg.response->statusCode == status && arg.response->body == body &&
         arg.error == Platform::Error();
}

}  // namespace TestSupport
