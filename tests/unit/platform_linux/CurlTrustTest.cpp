// Which servers are spoken to.

#include <string>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "support/ScopedEnvironment.h"
#include "support/UrlSessionCalls.h"
#include "support/tls/TrustedServer.h"

namespace {

using namespace std::chrono_literals;
using DevServer::CertificateWish;
using Platform::CurlUrlSession;
using Platform::CurlUrlSessionOptions;
using Platform::UrlFailure;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::Fetch;
using TestSupport::LoopbackServer;
using TestSupport::TrustedServer;

void SayHello(const TestSupport::WireRequest&, TestSupport::WireConnection& connection) {
  connection.Respond(200, "hello");
}

TestSupport::UrlOutcome FetchFrom(const DevServer::Identity& identity,
                                  const CurlUrlSessionOptions& options) {
  const LoopbackServer server({.identity = identity}, SayHello);
  CurlUrlSession session(options);
  return Fetch(session, server.Url("/"));
}

TestSupport::UrlOutcome FetchWithWish(const CertificateWish& wish) {
  return FetchFrom(DevServer::MakeServerIdentity(TrustedServer::Authority(), wish),
                   TrustedServer::SessionOptions());
}

TEST(CurlTrust, AcceptsAServerOfAnExtraAuthority) {
  EXPECT_THAT(FetchWithWish({}), Brings(200, "hello"));
}

TEST(CurlTrust, TakesTheExtraAuthorityFromTheEnvironmentToo) {
  const TestSupport::ScopedEnvironment file("SSL_CERT_FILE", TrustedServer::AuthorityFile());
  EXPECT_THAT(FetchFrom(DevServer::MakeServerIdentity(TrustedServer::Authority()), {}),
              Brings(200, "hello"));
}

TEST(CurlTrust, RefusesAnUnknownAuthority) {
  EXPECT_THAT(FetchFrom(DevServer::MakeServerIdentity(TrustedServer::Authority()), {}),
              FailsWith(UrlFailure::NotTrusted));
  EXPECT_THAT(FetchFrom(DevServer::MakeServerIdentity(DevServer::MakeAuthority("Another")),
                        TrustedServer::SessionOptions()),
              FailsWith(UrlFailure::NotTrusted));
}

// The name alone does not make it the authority.
TEST(CurlTrust, RefusesAnAuthorityOfTheSameName) {
  EXPECT_THAT(
      FetchFrom(DevServer::MakeServerIdentity(DevServer::MakeAuthority("Authority of the tests")),
                TrustedServer::SessionOptions()),
      FailsWith(UrlFailure::NotTrusted));
}

TEST(CurlTrust, RefusesASelfSignedCertificate) {
  EXPECT_THAT(FetchFrom(DevServer::MakeSelfSignedIdentity(), TrustedServer::SessionOptions()),
              FailsWith(UrlFailure::NotTrusted));
}

TEST(CurlTrust, RefusesAnExpiredCertificate) {
  CertificateWish wish;
  wish.notBefore = -48h;
  wish.notAfter = -1h;
  EXPECT_THAT(FetchWithWish(wish), FailsWith(UrlFailure::NotTrusted));
}

TEST(CurlTrust, RefusesACertificateThatIsNotYetValid) {
  CertificateWish wish;
  wish.notBefore = 1h;
  EXPECT_THAT(FetchWithWish(wish), FailsWith(UrlFailure::NotTrusted));
}

TEST(CurlTrust, RefusesACertificateForAnotherHost) {
  CertificateWish wish;
  wish.name = "127.0.0.1";  // the common name counts for nothing
  wish.hosts = {"DNS:example.com", "IP:127.0.0.2", "DNS:127.0.0.1"};
  EXPECT_THAT(FetchWithWish(wish), FailsWith(UrlFailure::NotTrusted));
}

TEST(CurlTrust, SaysWhenTheExtraAuthoritiesCannotBeRead) {
  CurlUrlSessionOptions options;
  options.extraTrustFile = "/nowhere/authority.pem";
  const auto outcome =
      FetchFrom(DevServer::MakeServerIdentity(TrustedServer::Authority()), options);
  EXPECT_THAT(outcome, FailsWith(UrlFailure::NotTrusted));
  EXPECT_THAT(outcome.error.LocalizedDescription(),
              testing::HasSubstr("\"/nowhere/authority.pem\" cannot be read"));
}

TEST(CurlTrust, IsWhatTheDefaultHostWasTold) {
  const TrustedServer server(SayHello);
  EXPECT_THAT(Fetch(*Platform::Host::CreateDefault().urlSession, server.Url()),
              FailsWith(UrlFailure::NotTrusted));
  Platform::HostOptions options;
  options.extraTrustFile = TrustedServer::AuthorityFile();
  EXPECT_THAT(Fetch(*Platform::Host::CreateDefault(options).urlSession, server.Url()),
              Brings(200, "hello"));
  options.largestResponseBody = 4;
  EXPECT_THAT(Fetch(*Platform::Host::CreateDefault(options).urlSession, server.Url()),
              FailsWith(UrlFailure::TooLarge));
}

TEST(CurlTrust, RefusesAServerThatDoesNotSpeakTls) {
  const LoopbackServer server({}, SayHello);
  CurlUrlSession session(TrustedServer::SessionOptions());
  std::string url = server.Url("/");
  url.replace(0, 4, "https");
  EXPECT_THAT(Fetch(session, url), FailsWith(UrlFailure::NotTrusted));
}

}  // namespace
