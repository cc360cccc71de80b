// Where a redirect may lead, and when cleartext is allowed.

#include <atomic>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "support/UrlSessionCalls.h"
#include "support/tls/TrustedServer.h"

namespace {

using Platform::CurlUrlSession;
using Platform::UrlFailure;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::Fetch;
using TestSupport::LoopbackServer;
using TestSupport::RequestFor;
using TestSupport::TrustedServer;
using TestSupport::WireConnection;
using TestSupport::WireRequest;

class CurlRedirectsTest : public testing::Test {
 protected:
  // "/to?<url>" answers 301 to that URL; "/hop?<n>" to the hop before; anything else ends here.
  void Serve(const WireRequest& request, WireConnection& connection) {
    const std::string& target = request.target;
    const std::size_t query = target.find('?');
    if (target.starts_with("/to?")) {
      connection.Respond(301, "moved", {{"Location", target.substr(query + 1)}, {"X-Hop", "1"}});
    } else if (target.starts_with("/hop?") && target != "/hop?0") {
      const int next = std::stoi(target.substr(query + 1)) - 1;
      connection.Respond(302, "", {{"Location", "/hop?" + std::to_string(next)}});
    } else {
      connection.Respond(200, request.method + " " + request.body);
    }
  }

  static Platform::CurlUrlSessionOptions AllowingCleartext(std::atomic<int>& asked) {
    auto options = TrustedServer::SessionOptions();
    options.allowsCleartext = [&asked] {
      ++asked;
      return true;
    };
    return options;
  }

  const LoopbackServer::Handler handler_ = [this](const WireRequest& request,
                                                  WireConnection& connection) {
    Serve(request, connection);
  };
  TrustedServer secure_{handler_};
  LoopbackServer cleartext_{{}, handler_};
  CurlUrlSession session_{TrustedServer::SessionOptions()};
};

TEST_F(CurlRedirectsTest, FollowsToHttps) {
  const auto outcome = Fetch(session_, secure_.Url("/to?" + secure_.Url("/there")));
  EXPECT_THAT(outcome, Brings(200, "GET "));
  EXPECT_FALSE(outcome.response->headers.contains("X-Hop"));
  EXPECT_FALSE(outcome.response->headers.contains("Location"));
}

TEST_F(CurlRedirectsTest, NeverFollowsOutOfHttps) {
  for (const std::string& url :
       {cleartext_.Url("/"), std::string("ftp://127.0.0.1/"), std::string("file:///etc/hosts")}) {
    EXPECT_THAT(Fetch(session_, secure_.Url("/to?" + url)),
                FailsWith(UrlFailure::CleartextRefused));
  }
  EXPECT_EQ(cleartext_.Accepted(), 0);
}

TEST_F(CurlRedirectsTest, NeverFollowsOutOfHttpsEvenWhereCleartextIsAllowed) {
  std::atomic<int> asked{0};
  CurlUrlSession session(AllowingCleartext(asked));
  EXPECT_THAT(Fetch(session, secure_.Url("/to?" + cleartext_.Url("/"))),
              FailsWith(UrlFailure::CleartextRefused));
  EXPECT_EQ(asked, 0);
}

TEST_F(CurlRedirectsTest, SendsCleartextWhereItIsAllowed) {
  std::atomic<int> asked{0};
  CurlUrlSession session(AllowingCleartext(asked));
  EXPECT_THAT(Fetch(session, cleartext_.Url("/")), Brings(200, "GET "));
  EXPECT_EQ(asked, 1);
  EXPECT_THAT(Fetch(session, cleartext_.Url("/to?" + secure_.Url("/"))), Brings(200, "GET "));
  EXPECT_THAT(Fetch(session, "ftp://127.0.0.1/"), FailsWith(UrlFailure::CleartextRefused));
}

TEST_F(CurlRedirectsTest, NeverGoesBackFromHttpsThatWasReachedFromCleartext) {
  std::atomic<int> asked{0};
  CurlUrlSession session(AllowingCleartext(asked));
  EXPECT_THAT(Fetch(session, cleartext_.Url("/to?" + cleartext_.Url("/"))), Brings(200, "GET "));
  EXPECT_EQ(cleartext_.Accepted(), 2);
  const std::string back = secure_.Url("/to?" + cleartext_.Url("/"));
  EXPECT_THAT(Fetch(session, cleartext_.Url("/to?" + back)),
              FailsWith(UrlFailure::CleartextRefused));
  EXPECT_EQ(cleartext_.Accepted(), 3);
}

TEST_F(CurlRedirectsTest, SendsNoCleartextWhereTheQuestionFails) {
  auto options = TrustedServer::SessionOptions();
  options.allowsCleartext = []() -> bool { throw std::runtime_error("no answer"); };
  CurlUrlSession session(options);
  EXPECT_EQ(Fetch(session, cleartext_.Url("/")).response, nullptr);
  EXPECT_THAT(Fetch(session, secure_.Url()), Brings(200, "GET "));
  EXPECT_EQ(cleartext_.Accepted(), 0);
}

TEST_F(CurlRedirectsTest, FollowsTwentyAndNoMore) {
  EXPECT_THAT(Fetch(session_, secure_.Url("/hop?20")), Brings(200, "GET "));
  EXPECT_THAT(Fetch(session_, secure_.Url("/hop?21")), FailsWith(UrlFailure::TooManyRedirects));
  EXPECT_EQ(secure_.Server().Accepted(), 42);
}

TEST_F(CurlRedirectsTest, AsksWithGetAfterAPost) {
  auto request = RequestFor(secure_.Url("/to?/there"));
  request.method = "POST";
  request.body = "data";
  EXPECT_THAT(Fetch(session_, request), Brings(200, "GET "));
}

}  // namespace
