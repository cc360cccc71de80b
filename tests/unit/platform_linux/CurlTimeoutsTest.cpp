// Servers that are slow, or silent.

#include <chrono>
#include <string>

#include <gmock/gmock.h>

#include "support/UrlSessionCalls.h"
#include "support/tls/TrustedServer.h"

namespace {

using namespace std::chrono_literals;
using Platform::CurlUrlSession;
using Platform::UrlFailure;
using Platform::UrlRequest;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::Fetch;
using TestSupport::LoopbackServer;
using TestSupport::RequestFor;
using TestSupport::TrustedServer;
using TestSupport::WireConnection;
using TestSupport::WireRequest;
using Clock = std::chrono::steady_clock;

UrlRequest RequestWith(const std::string& url, std::chrono::seconds idle,
                       std::chrono::seconds whole) {
  UrlRequest request = RequestFor(url);
  request.idleTimeout = idle;
  request.wholeTimeout = whole;
  return request;
}

// Sends the text a byte at a time, with a pause after each.
LoopbackServer::Handler Drip(const std::string& text, std::chrono::milliseconds pause) {
  return [text, pause](const WireRequest&, WireConnection& connection) {
    for (const char byte : text) {
      if (!connection.Send({&byte, 1}) || !connection.Pause(pause)) return;
    }
  };
}

class CurlTimeoutsTest : public testing::Test {
 protected:
  CurlUrlSession session_{TrustedServer::SessionOptions()};
};

TEST_F(CurlTimeoutsTest, WaitsForASlowFirstByte) {
  const TrustedServer server([](const WireRequest& request, WireConnection& connection) {
    if (request.target == "/never") return connection.WaitForClient();
    connection.Pause(1200ms);
    connection.Respond(200, "late");
  });
  EXPECT_THAT(Fetch(session_, RequestWith(server.Url(), 20s, 60s)), Brings(200, "late"));
  EXPECT_THAT(Fetch(session_, RequestWith(server.Url("/never"), 1s, 20s)),
              FailsWith(UrlFailure::TimedOut));
}

// The whole takes longer than the idle timeout; each byte begins it anew.
TEST_F(CurlTimeoutsTest, BeginsTheIdleTimeoutAnewWithEveryByte) {
  const TrustedServer server(Drip("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody", 80ms));
  const auto start = Clock::now();
  EXPECT_THAT(Fetch(session_, RequestWith(server.Url(), 3s, 60s)), Brings(200, "body"));
  EXPECT_GT(Clock::now() - start, 3s);
}

TEST_F(CurlTimeoutsTest, EndsATransferThatFallsSilent) {
  const TrustedServer server([](const WireRequest&, WireConnection& connection) {
    connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
    connection.WaitForClient();
  });
  const auto start = Clock::now();
  EXPECT_THAT(Fetch(session_, RequestWith(server.Url(), 1s, 20s)), FailsWith(UrlFailure::TimedOut));
  EXPECT_GE(Clock::now() - start, 1s);
}

TEST_F(CurlTimeoutsTest, EndsATransferThatTakesTooLongAsAWhole) {
  const TrustedServer server(
      Drip("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + std::string(1000, 'x'), 50ms));
  const auto start = Clock::now();
  EXPECT_THAT(Fetch(session_, RequestWith(server.Url(), 20s, 1s)), FailsWith(UrlFailure::TimedOut));
  EXPECT_GE(Clock::now() - start, 1s);
  EXPECT_LT(Clock::now() - start, 15s);
}

TEST_F(CurlTimeoutsTest, EndsAConnectionThatNeverSpeaks) {
  const LoopbackServer server(
      {.identity = DevServer::MakeServerIdentity(TrustedServer::Authority()),
       .hangsAfterAccept = true},
      nullptr);
  EXPECT_THAT(Fetch(session_, RequestWith(server.Url("/"), 1s, 20s)),
              FailsWith(UrlFailure::TimedOut));
}

TEST_F(CurlTimeoutsTest, ServesOthersMeanwhile) {
  const LoopbackServer silent(
      {.identity = DevServer::MakeServerIdentity(TrustedServer::Authority()),
       .hangsAfterAccept = true},
      nullptr);
  const TrustedServer server(
      [](const WireRequest&, WireConnection& connection) { connection.Respond(200, "quick"); });
  TestSupport::PendingUrl stuck(session_, RequestWith(silent.Url("/"), 30s, 30s));
  EXPECT_THAT(Fetch(session_, server.Url()), Brings(200, "quick"));
  EXPECT_FALSE(stuck.IsOver());
  session_.Cancel(stuck.Task());
  EXPECT_THAT(stuck.Wait(), FailsWith(UrlFailure::Cancelled));
}

TEST_F(CurlTimeoutsTest, TakesTimeoutsOfNothingAndWithoutEnd) {
  const TrustedServer server(
      [](const WireRequest&, WireConnection& connection) { connection.Respond(200, "ok"); });
  for (const std::chrono::seconds timeout :
       {std::chrono::seconds(0), std::chrono::seconds(-1), std::chrono::seconds::max(),
        std::chrono::seconds::min()}) {
    EXPECT_THAT(Fetch(session_, RequestWith(server.Url(), timeout, timeout)), Brings(200, "ok"));
  }
}

}  // namespace
