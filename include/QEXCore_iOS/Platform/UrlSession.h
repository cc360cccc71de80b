#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

struct UrlHeader {
  std::string name;
  std::string value;

  friend bool operator==(const UrlHeader&, const UrlHeader&) = default;
};

struct UrlRequest {
  std::string url;
  std::string method = "GET";      // or "POST"
  std::vector<UrlHeader> headers;  // sent in this order, each name once
  std::string body;                // sent with POST only
  // How long may pass between two packets, and how long all of it may take. Nothing or less stands
  // for a minute and a week.
  std::chrono::seconds idleTimeout{0};
  std::chrono::seconds wholeTimeout{0};
};

// What a server answered. Never changes once it has been delivered.
struct UrlResponse {
  std::int32_t statusCode = 0;
  // The names in their usual spelling ("ETag", "Last-Modified", "X-Request-Id"), however the server
  // wrote them; the values of a repeated name joined with ", ". Values are bytes, as they came.
  std::map<std::string, std::string> headers;
  std::string body;  // its content coding undone
};

// The domain of the errors below, and what their codes mean.
inline constexpr const char* kUrlErrorDomain = "platform.url";

enum class UrlFailure : std::int64_t {
  BadRequest = 1,        // the URL, the method or a header cannot be sent; nothing was
  CleartextRefused = 2,  // not https, or a redirect to something that is not
  NotConnected = 3,      // name not found, connection refused, no route
  NotTrusted = 4,        // no secure connection: certificate, host name, protocol
  TimedOut = 5,
  ConnectionLost = 6,  // ended before the response did
  TooManyRedirects = 7,
  BadResponse = 8,  // no HTTP, headers without end, a content coding that cannot be undone
  TooLarge = 9,     // the body exceeds what the session takes
  Cancelled = 10,
};

// Sends HTTPS requests, each on a connection of its own: no cookies, no cache, nothing kept.
//
// Redirects are followed, twenty at most, and never from https, wherever it was reached, to
// anything else. Cleartext is refused, unless the application's information dictionary allows
// arbitrary loads ("NSAllowsArbitraryLoads" of "NSAppTransportSecurity"). A body may be as large as
// the session takes and is never allocated on a header's word. Headers that belong to the
// connection ("Connection", "Content-Length", "Expect", "Host", "Keep-Alive", "Proxy-Connection",
// "TE", "Transfer-Encoding", "Upgrade") are left out.
//
// Safe from any thread. When the session goes, requests under way are cancelled; its destructor
// waits for the completion that is running, unless it runs inside it. What is started while the
// session goes is dropped without a word.
class QEXCORE_API UrlSession {
 public:
  // Called exactly once for each request, on the session's own thread: with the response, whatever
  // its status, or with a null pointer and an error. Should return soon: other requests wait
  // meanwhile. What it throws is dropped.
  using Completion =
      std::function<void(std::shared_ptr<const UrlResponse> response, const Error& error)>;
  using TaskId = std::uint64_t;

  virtual ~UrlSession();

  // Returns at once. `completion` may be empty. Throws Platform::DeviceError, and the completion is
  // then never called, when the device has no thread left.
  virtual TaskId Start(UrlRequest request, Completion completion) = 0;

  // Ends the request soon, with UrlFailure::Cancelled. Nothing when it has already ended.
  virtual void Cancel(TaskId task) = 0;
};

}  // namespace Platform
