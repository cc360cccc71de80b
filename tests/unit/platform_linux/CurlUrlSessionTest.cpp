// What servers send, well-formed and not, and what a session leaves behind.

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Guarded.h"
#include "support/UrlSessionCalls.h"
#include "support/tls/ContentCodings.h"
#include "support/tls/TrustedServer.h"

namespace {

namespace fs = std::filesystem;

using Platform::CurlUrlSession;
using Platform::UrlFailure;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::Fetch;
using TestSupport::Gzip;
using TestSupport::LoopbackServer;
using TestSupport::PendingUrl;
using TestSupport::RequestFor;
using TestSupport::TrustedServer;
using TestSupport::WaitUntil;
using TestSupport::WireConnection;
using TestSupport::WireRequest;

// A server that sends these bytes and nothing else.
LoopbackServer::Handler Say(const std::string& bytes) {
  return [bytes](const WireRequest&, WireConnection& connection) { connection.Send(bytes); };
}

// A server that answers 200 with a body of this coding.
LoopbackServer::Handler Respond(const std::string& body, const std::string& coding) {
  return [body, coding](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, body, {{"Content-Encoding", coding}});
  };
}

std::ptrdiff_t EntriesOf(const char* directory) {
  return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

bool HasThreadNamed(const std::string& name) {
  for (const auto& task : fs::directory_iterator("/proc/self/task")) {
    std::string comm;
    std::getline(std::ifstream(task.path() / "comm"), comm);
    if (comm == name) return true;
  }
  return false;
}

class CurlUrlSessionTest : public testing::Test {
 protected:
  TestSupport::UrlOutcome FetchFrom(const LoopbackServer::Handler& handler) {
    const TrustedServer server(handler);
    return Fetch(session_, server.Url());
  }

  CurlUrlSession session_{TrustedServer::SessionOptions()};
};

TEST_F(CurlUrlSessionTest, HasNoThreadUntilTheFirstRequestAndNoneAfterItsEnd) {
  const TrustedServer server(Say("HTTP/1.1 204 No Content\r\n\r\n"));
  {
    CurlUrlSession session(TrustedServer::SessionOptions());
    session.Cancel(1);
    EXPECT_FALSE(HasThreadNamed("QEXUrlSession"));
    EXPECT_THAT(Fetch(session, server.Url()), Brings(204, ""));
    EXPECT_TRUE(HasThreadNamed("QEXUrlSession"));
  }
  EXPECT_FALSE(HasThreadNamed("QEXUrlSession"));
}

TEST_F(CurlUrlSessionTest, AsksAsThePlatformWould) {
  TestSupport::Guarded<WireRequest> seen;
  const auto look = [&seen](const WireRequest& request, WireConnection& connection) {
    seen.Set(request);
    connection.Respond(200);
  };
  EXPECT_THAT(FetchFrom(look), Brings(200, ""));
  EXPECT_EQ(seen.Get().method, "GET");
  EXPECT_EQ(seen.Get().headers.at("accept-encoding"), "gzip, deflate, br");
  EXPECT_EQ(seen.Get().headers.at("accept"), "*/*");
  EXPECT_FALSE(seen.Get().headers.contains("user-agent"));
  EXPECT_FALSE(seen.Get().headers.contains("cookie"));
  EXPECT_FALSE(seen.Get().headers.contains("content-type"));
  EXPECT_FALSE(seen.Get().headers.contains("content-length"));
}

TEST_F(CurlUrlSessionTest, PostsWithAndWithoutABody) {
  TestSupport::Guarded<WireRequest> seen;
  const TrustedServer server([&seen](const WireRequest& request, WireConnection& connection) {
    seen.Set(request);
    connection.Respond(200);
  });
  auto request = RequestFor(server.Url());
  request.method = "POST";
  EXPECT_THAT(Fetch(session_, request), Brings(200, ""));
  EXPECT_EQ(seen.Get().headers.at("content-length"), "0");
  EXPECT_FALSE(seen.Get().headers.contains("content-type"));
  request.body = std::string("a\0b", 3);
  EXPECT_THAT(Fetch(session_, request), Brings(200, ""));
  EXPECT_EQ(seen.Get().body, std::string("a\0b", 3));
  EXPECT_EQ(seen.Get().headers.at("content-type"), "application/x-www-form-urlencoded");
  request.body = std::string(3'000'000, 'p');
  request.headers = {{"Content-Type", "application/json"}};
  EXPECT_THAT(Fetch(session_, request), Brings(200, ""));
  EXPECT_TRUE(seen.Get().body == request.body);
  EXPECT_EQ(seen.Get().headers.at("content-type"), "application/json");
  EXPECT_FALSE(seen.Get().headers.contains("expect"));
  request.method = "GET";
  EXPECT_THAT(Fetch(session_, request), Brings(200, ""));
  EXPECT_EQ(seen.Get().body, "");
}

TEST_F(CurlUrlSessionTest, KeepsNoCookies) {
  TestSupport::Guarded<WireRequest> seen;
  const TrustedServer server([&seen](const WireRequest& request, WireConnection& connection) {
    seen.Set(request);
    connection.Respond(200, "", {{"Set-Cookie", "a=b"}});
  });
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(Fetch(session_, server.Url()), Brings(200, ""));
    EXPECT_FALSE(seen.Get().headers.contains("cookie"));
  }
  EXPECT_EQ(server.Server().Accepted(), 2);
}

TEST_F(CurlUrlSessionTest, ReadsChunkedBodies) {
  EXPECT_THAT(FetchFrom(Say("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                            "3\r\nabc\r\n2\r\nde\r\n0\r\nTrailer: ignored\r\n\r\n")),
              Brings(200, "abcde"));
}

TEST_F(CurlUrlSessionTest, ReadsABodyThatEndsWithTheConnection) {
  EXPECT_THAT(FetchFrom(Say("HTTP/1.1 200 OK\r\n\r\nto the end")), Brings(200, "to the end"));
}

TEST_F(CurlUrlSessionTest, PassesInterimResponsesOver) {
  EXPECT_THAT(FetchFrom(Say("HTTP/1.1 103 Early Hints\r\nX: 1\r\n\r\n"
                            "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok")),
              Brings(200, "ok"));
}

TEST_F(CurlUrlSessionTest, UndoesEveryContentCodingThatItAsksFor) {
  const std::string text(100'000, 'z');
  const std::pair<const char*, std::string> packed[] = {
      {"gzip", Gzip(text)},
      {"deflate", TestSupport::Deflate(text)},
      {"deflate", TestSupport::BareDeflate(text)},
      {"br", TestSupport::Brotli(text)},
      {"deflate, gzip", Gzip(TestSupport::Deflate(text))},
      {"identity", text}};
  for (const auto& [coding, body] : packed) {
    EXPECT_THAT(FetchFrom(Respond(body, coding)), Brings(200, text)) << coding;
  }
}

TEST_F(CurlUrlSessionTest, DeliversStatusesAsTheyAre) {
  for (const int status : {200, 204, 206, 304, 404, 416, 500, 503}) {
    EXPECT_THAT(FetchFrom(Say("HTTP/1.1 " + std::to_string(status) +
                              " Whatever\r\nContent-Length: 0\r\n\r\n")),
                Brings(status, ""));
  }
}

TEST_F(CurlUrlSessionTest, RefusesTruncatedBodies) {
  for (const std::string bytes :
       {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nff\r\nhalf",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nhalf\r\n"}) {
    EXPECT_THAT(FetchFrom(Say(bytes)), FailsWith(UrlFailure::ConnectionLost)) << bytes;
  }
}

TEST_F(CurlUrlSessionTest, RefusesAConnectionThatBreaks) {
  for (const std::string bytes : {"", "HTTP/1.1 2", "HTTP/1.1 200 OK\r\nX: ",
                                  "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf",
                                  "HTTP/1.1 200 OK\r\n\r\nno end was told"}) {
    EXPECT_THAT(FetchFrom([&](const WireRequest&, WireConnection& connection) {
                  connection.Send(bytes);
                  connection.Reset();
                }),
                FailsWith(UrlFailure::ConnectionLost))
        << bytes;
  }
}

TEST_F(CurlUrlSessionTest, RefusesWhatIsNoHttp) {
  for (const std::string bytes : {"SSH-2.0-OpenSSH\r\n\r\n", "<html></html>", "\r\n\r\n\r\n"}) {
    EXPECT_EQ(FetchFrom(Say(bytes)).response, nullptr) << bytes;
  }
}

TEST_F(CurlUrlSessionTest, RefusesACodingThatCannotBeUndone) {
  for (const std::string coding : {"gzip", "deflate", "br", "compress", "nonsense"}) {
    EXPECT_THAT(FetchFrom(Respond("this is not packed", coding)),
                FailsWith(UrlFailure::BadResponse))
        << coding;
  }
}

TEST_F(CurlUrlSessionTest, RefusesHeadersWithoutEnd) {
  EXPECT_THAT(FetchFrom([](const WireRequest&, WireConnection& connection) {
                connection.Send("HTTP/1.1 200 OK\r\n");
                const std::string line = "X-Filler: " + std::string(10'000, 'f') + "\r\n";
                while (connection.Send(line)) {
                }
              }),
              FailsWith(UrlFailure::BadResponse));
}

TEST_F(CurlUrlSessionTest, RefusesABodyBeyondItsBound) {
  auto options = TrustedServer::SessionOptions();
  options.largestBody = 1000;
  CurlUrlSession session(options);
  std::atomic<std::size_t> size{0};
  const TrustedServer server([&size](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, std::string(size, 'b'));
  });
  size = 1000;
  EXPECT_THAT(Fetch(session, server.Url()), Brings(200, std::string(1000, 'b')));
  size = 1001;
  EXPECT_THAT(Fetch(session, server.Url()), FailsWith(UrlFailure::TooLarge));
}

TEST_F(CurlUrlSessionTest, CountsWhatACodingHides) {
  auto options = TrustedServer::SessionOptions();
  options.largestBody = 1'000'000;
  CurlUrlSession session(options);
  const std::string zeros(20'000'000, '\0');
  for (const auto& [coding, bomb] :
       {std::pair("gzip", Gzip(zeros)), std::pair("deflate", TestSupport::Deflate(zeros)),
        std::pair("br", TestSupport::Brotli(zeros))}) {
    const TrustedServer server(Respond(bomb, coding));
    EXPECT_THAT(Fetch(session, server.Url()), FailsWith(UrlFailure::TooLarge)) << coding;
  }
}

// A claim costs nothing: no memory is taken on its word.
TEST_F(CurlUrlSessionTest, DoesNotBelieveALengthThatIsClaimed) {
  EXPECT_THAT(FetchFrom(Say("HTTP/1.1 200 OK\r\nContent-Length: 9000000000000\r\n\r\nhi")),
              FailsWith(UrlFailure::ConnectionLost));
  EXPECT_EQ(FetchFrom(Say("HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\nhi")).response, nullptr);
}

TEST_F(CurlUrlSessionTest, FailsWhereNobodyListens) {
  std::string url;
  {
    const TrustedServer server(Say(""));
    url = server.Url();
  }
  EXPECT_THAT(Fetch(session_, url), FailsWith(UrlFailure::NotConnected));
}

TEST_F(CurlUrlSessionTest, LeavesNeitherHandlesNorThreadsBehind) {
  const TrustedServer server([](const WireRequest& request, WireConnection& connection) {
    if (request.target == "/reset") {
      connection.Reset();
    } else {
      connection.Respond(200, "hello");
    }
  });
  const auto run = [&](int count) {
    CurlUrlSession session(TrustedServer::SessionOptions());
    std::vector<std::unique_ptr<PendingUrl>> pending;
    for (int i = 0; i < count; ++i) {
      const char* path = i % 5 == 0 ? "/reset" : "/";
      pending.push_back(std::make_unique<PendingUrl>(session, RequestFor(server.Url(path))));
      if (i % 7 == 0) session.Cancel(pending.back()->Task());
    }
    for (const auto& each : pending) each->Wait();
  };
  // The server lets go of ended connections when the next one comes.
  const auto settle = [&] {
    EXPECT_TRUE(WaitUntil([&] { return server.Server().Open() == 0; }));
    EXPECT_THAT(Fetch(session_, server.Url()), Brings(200, "hello"));
    EXPECT_TRUE(WaitUntil([&] { return server.Server().Open() == 0; }));
  };
  run(64);  // what is made once is made
  settle();
  const auto handles = EntriesOf("/proc/self/fd");
  const auto threads = EntriesOf("/proc/self/task");
  run(256);
  settle();
  EXPECT_EQ(EntriesOf("/proc/self/fd"), handles);
  EXPECT_TRUE(WaitUntil([&] { return EntriesOf("/proc/self/task") <= threads; }));
}

TEST_F(CurlUrlSessionTest, BlocksTheApplicationsSignals) {
  const TrustedServer server(Say("HTTP/1.1 204 No Content\r\n\r\n"));
  std::promise<bool> blocked;
  session_.Start(RequestFor(server.Url()), [&blocked](const auto&, const auto&) {
    sigset_t mask;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    blocked.set_value(::sigismember(&mask, SIGTERM) == 1 && ::sigismember(&mask, SIGPIPE) == 1);
  });
  EXPECT_TRUE(blocked.get_future().get());
}

}  // namespace
