#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "Certificates.h"

namespace TestSupport {

// A request as it came over the wire. Header names are in lower case.
struct WireRequest {
  std::string method;
  std::string target;
  std::map<std::string, std::string> headers;
  std::string body;
};

// The server's end of one connection, for the time of one request.
class WireConnection {
 public:
  virtual ~WireConnection() = default;

  // Sends bytes as they stand; nothing when the client has gone. False then.
  virtual bool Send(std::string_view bytes) = 0;

  // A whole response, with its length.
  bool Respond(int status, std::string_view body = {},
               const std::map<std::string, std::string>& headers = {});

  // The bytes that the client sends next; none when it has closed its end.
  virtual std::string Receive() = 0;

  // Waits, but not beyond the server's end. False when the server is ending.
  virtual bool Pause(std::chrono::milliseconds time) = 0;

  // Waits until the client closes its end, or the server ends.
  virtual void WaitForClient() = 0;

  // Drops the connection, as a machine that fails would, in place of ending it in good order.
  virtual void Reset() = 0;
};

// An HTTP/1.1 server on 127.0.0.1, one request for each connection, each connection on a thread of
// its own, which does whatever a test wants done to its client. All of them end with the server.
class LoopbackServer {
 public:
  using Handler = std::function<void(const WireRequest&, WireConnection&)>;

  struct Options {
    std::optional<DevServer::Identity> identity;  // none: cleartext
    bool hangsAfterAccept = false;                // never says a word
    // Agrees on HTTP/2 with clients that offer it, and leaves it to the handler to speak it: no
    // request is read before.
    bool isHttp2 = false;
  };

  LoopbackServer(Options options, Handler handler);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // "https://127.0.0.1:<port>" (or http) and `path`.
  std::string Url(const std::string& path) const;

  // How many connections have been accepted, and how many are open.
  int Accepted() const { return accepted_; }
  int Open() const { return open_; }

 private:
  class Connection;
  struct Served {
    std::unique_ptr<Connection> connection;
    std::thread thread;
  };

  void Accept();
  void JoinThoseDone();

  const Options options_;
  const Handler handler_;
  struct TlsRelease {
    void operator()(void* context) const;
  };
  std::unique_ptr<void, TlsRelease> tls_;
  int socket_ = -1;
  std::uint16_t port_ = 0;
  std::atomic<int> accepted_{0};
  std::atomic<int> open_{0};
  std::atomic<bool> isEnding_{false};
  std::mutex mutex_;
  std::list<Served> served_;  // guarded by mutex_
  std::thread acceptor_;
};

}  // namespace TestSupport
