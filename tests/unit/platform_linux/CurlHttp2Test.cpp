// What servers do to a request over HTTP/2.

#include <atomic>
#include <chrono>
#include <string>

#include <gmock/gmock.h>

#include "support/UrlSessionCalls.h"
#include "support/tls/Http2Frames.h"
#include "support/tls/TrustedServer.h"

namespace {

using namespace std::chrono_literals;
using Platform::CurlUrlSession;
using Platform::UrlFailure;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::Fetch;
using TestSupport::Http2Body;
using TestSupport::Http2Frame;
using TestSupport::Http2GoAway;
using TestSupport::Http2Head;
using TestSupport::Http2Reset;
using TestSupport::kHttp2Stream;
using TestSupport::LoopbackServer;
using TestSupport::MakeHttp2Frame;
using TestSupport::TrustedServer;
using TestSupport::UrlOutcome;
using TestSupport::WireConnection;
using TestSupport::WireRequest;

constexpr std::uint32_t kNoError = 0;
constexpr std::uint32_t kInternalError = 2;
constexpr std::uint32_t kRefusedStream = 7;
constexpr std::uint32_t kEnhanceYourCalm = 11;

using Act = std::function<void(WireConnection&)>;

// Sends these bytes once it has been asked, and stays until the client goes.
Act Say(const std::string& frames) {
  return [frames](WireConnection& connection) {
    connection.Send(frames);
    connection.WaitForClient();
  };
}

// The same, but closes the connection behind them.
Act SayAndClose(const std::string& frames) {
  return [frames](WireConnection& connection) { connection.Send(frames); };
}

class CurlHttp2Test : public testing::Test {
 protected:
  UrlOutcome FetchFrom(const Act& act, std::chrono::seconds idleTimeout = 20s) {
    const LoopbackServer server(
        {.identity = DevServer::MakeServerIdentity(TrustedServer::Authority()), .isHttp2 = true},
        [this, &act](const WireRequest&, WireConnection& connection) {
          if (!TestSupport::BeginHttp2(connection)) return;
          ++asked_;
          act(connection);
        });
    Platform::UrlRequest request = TestSupport::RequestFor(server.Url("/"));
    request.idleTimeout = idleTimeout;
    request.wholeTimeout = 60s;
    return Fetch(session_, request);
  }

  std::atomic<int> asked_{0};
  CurlUrlSession session_{TrustedServer::SessionOptions()};
};

TEST_F(CurlHttp2Test, ReadsAResponseInSeveralFrames) {
  EXPECT_THAT(FetchFrom(Say(Http2Head("5") + Http2Body("he", false) + Http2Body("llo", true))),
              Brings(200, "hello"));
  EXPECT_THAT(FetchFrom(Say(Http2Head() + Http2Body("hello", false) + Http2Body("", true))),
              Brings(200, "hello"));
}

TEST_F(CurlHttp2Test, ReadsAResponseThatIsFollowedByGoAway) {
  EXPECT_THAT(FetchFrom(SayAndClose(Http2Head("5") + Http2Body("hello", true) +
                                    Http2GoAway(kHttp2Stream, kNoError))),
              Brings(200, "hello"));
}

// The server takes no further requests, but ends the one that it has.
TEST_F(CurlHttp2Test, ReadsAResponseToTheEndAfterGoAway) {
  EXPECT_THAT(FetchFrom(Say(Http2Head("5") + Http2Body("he", false) +
                            Http2GoAway(kHttp2Stream, kNoError) + Http2Body("llo", true))),
              Brings(200, "hello"));
}

TEST_F(CurlHttp2Test, RefusesAResponseThatIsReset) {
  for (const std::uint32_t reason : {kNoError, kInternalError, kEnhanceYourCalm}) {
    EXPECT_THAT(FetchFrom(Say(Http2Head("10") + Http2Body("half", false) + Http2Reset(reason))),
                FailsWith(UrlFailure::ConnectionLost))
        << reason;
    EXPECT_THAT(FetchFrom(Say(Http2Head() + Http2Body("half", false) + Http2Reset(reason))),
                FailsWith(UrlFailure::ConnectionLost))
        << reason;
    EXPECT_THAT(FetchFrom(Say(Http2Reset(reason))), FailsWith(UrlFailure::ConnectionLost))
        << reason;
  }
}

TEST_F(CurlHttp2Test, RefusesAConnectionThatGoesAwayBeforeItsAnswer) {
  for (const std::uint32_t reason : {kNoError, kInternalError, kEnhanceYourCalm}) {
    EXPECT_EQ(FetchFrom(SayAndClose(Http2GoAway(0, reason))).response, nullptr) << reason;
    EXPECT_EQ(
        FetchFrom(SayAndClose(Http2Head() + Http2Body("half", false) + Http2GoAway(0, reason)))
            .response,
        nullptr)
        << reason;
  }
}

TEST_F(CurlHttp2Test, DoesNotAskForeverWhereItIsAlwaysRefused) {
  EXPECT_EQ(FetchFrom(Say(Http2Reset(kRefusedStream))).response, nullptr);
  EXPECT_LE(asked_, 10);
}

TEST_F(CurlHttp2Test, RefusesATruncatedBody) {
  EXPECT_THAT(FetchFrom(Say(Http2Head("10") + Http2Body("half", true))),
              FailsWith(UrlFailure::ConnectionLost));
  EXPECT_THAT(FetchFrom(SayAndClose(Http2Head("10") + Http2Body("half", false))),
              FailsWith(UrlFailure::ConnectionLost));
  // No length was told: the end that is missing is the stream's.
  EXPECT_THAT(FetchFrom(SayAndClose(Http2Head() + Http2Body("half", false))),
              FailsWith(UrlFailure::ConnectionLost));
  // The connection ends inside a frame.
  EXPECT_THAT(FetchFrom(SayAndClose(Http2Head() + Http2Body("half of it", true).substr(0, 14))),
              FailsWith(UrlFailure::ConnectionLost));
}

TEST_F(CurlHttp2Test, RefusesAConnectionThatBreaks) {
  for (const std::string& frames :
       {std::string(), Http2Head(), Http2Head() + Http2Body("x", false)}) {
    EXPECT_THAT(FetchFrom([&frames](WireConnection& connection) {
                  connection.Send(frames);
                  connection.Reset();
                }),
                FailsWith(UrlFailure::ConnectionLost));
  }
}

TEST_F(CurlHttp2Test, RefusesWhatIsNoHttp2) {
  const std::string tooLong(3, '\xff');
  for (const std::string& bytes :
       {std::string("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"), tooLong + "\x01\x04",
        MakeHttp2Frame(Http2Frame::Headers, TestSupport::kHttp2EndHeaders, kHttp2Stream,
                       std::string(8, '\xff')),
        MakeHttp2Frame(Http2Frame::Settings, 0, kHttp2Stream, ""),
        MakeHttp2Frame(Http2Frame::WindowUpdate, 0, 0, std::string(4, '\0'))}) {
    EXPECT_EQ(FetchFrom(SayAndClose(bytes)).response, nullptr);
  }
}

TEST_F(CurlHttp2Test, EndsAStreamThatFallsSilent) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(FetchFrom(Say(Http2Head("10") + Http2Body("half", false)), 2s),
              FailsWith(UrlFailure::TimedOut));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 2s);
}

}  // namespace
