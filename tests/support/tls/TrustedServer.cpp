#include "support/tls/TrustedServer.h"

#include <utility>

namespace TestSupport {

TrustedServer::TrustedServer(LoopbackServer::Handler handler)
    : server_({.identity = DevServer::MakeServerIdentity(Authority())}, std::move(handler)) {}

const DevServer::Identity& TrustedServer::Authority() {
  static const DevServer::Identity authority = DevServer::MakeAuthority("Authority of the tests");
  return authority;
}

std::string TrustedServer::AuthorityFile() {
  static const TemporaryDirectory folder;
  static const std::string path = folder.WriteFile("authority.pem", Authority().certificate);
  return path;
}

Platform::CurlUrlSessionOptions TrustedServer::SessionOptions() {
  Platform::CurlUrlSessionOptions options;
  options.extraTrustFile = AuthorityFile();
  return options;
}

}  // namespace TestSupport
