#pragma once

#include <string>

#include "platform/linux/CurlUrlSession.h"
#include "support/TemporaryDirectory.h"
#include "support/tls/LoopbackServer.h"

namespace TestSupport {

// The certificate authority of the tests of one process, and a server that it vouches for.
class TrustedServer {
 public:
  explicit TrustedServer(LoopbackServer::Handler handler);

  std::string Url(const std::string& path = "/") const { return server_.Url(path); }
  const LoopbackServer& Server() const { return server_; }

  static const DevServer::Identity& Authority();

  // A PEM file of the authority's certificate.
  static std::string AuthorityFile();

  // Options for a session that trusts the authority beside the system's.
  static Platform::CurlUrlSessionOptions SessionOptions();

 private:
  LoopbackServer server_;
};

}  // namespace TestSupport
