#include <atomic>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/JoiningThread.h"
#include "platform/linux/UrlRequestRules.h"
#include "support/FakeUrlSession.h"
#include "support/Guarded.h"
#include "support/UrlSessionCalls.h"
#include "support/tls/TrustedServer.h"

namespace {

using Platform::UrlFailure;
using Platform::UrlRequest;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::Fetch;
using TestSupport::PendingUrl;
using TestSupport::RequestFor;
using TestSupport::UrlOutcome;
using TestSupport::WaitUntil;

// What the server saw, and what it answers: nothing means that it never does.
struct Seen {
  std::string method;
  std::map<std::string, std::string> headers;  // names in lower case
  std::string body;
};
struct Reply {
  int status = 200;
  std::string body;
  std::map<std::string, std::string> headers;
};
using Respond = std::function<std::optional<Reply>(const Seen&)>;

class CurlPeer {
 public:
  explicit CurlPeer(Respond respond)
      : server_([respond](const TestSupport::WireRequest& request,
                          TestSupport::WireConnection& connection) {
          const auto reply = respond({request.method, request.headers, request.body});
          if (reply) {
            connection.Respond(reply->status, reply->body, reply->headers);
          } else {
            connection.WaitForClient();
          }
        }) {}

  std::string Url() const { return server_.Url(); }
  static std::unique_ptr<Platform::UrlSession> Session() {
    return std::make_unique<Platform::CurlUrlSession>(TestSupport::TrustedServer::SessionOptions());
  }

 private:
  TestSupport::TrustedServer server_;
};

class DoublePeer {
 public:
  explicit DoublePeer(Respond respond) : respond_(std::move(respond)) {}

  static std::string Url() { return "https://double.example/"; }
  std::unique_ptr<Platform::UrlSession> Session() const {
    auto session = std::make_unique<TestSupport::FakeUrlSession>();
    session->SetServer([respond = respond_](const UrlRequest& request) {
      Seen seen{request.method, {}, request.body};
      for (const Platform::UrlHeader& header : request.headers) {
        if (!Platform::IsConnectionHeader(header.name)) {
          seen.headers[Lower(header.name)] = header.value;
        }
      }
      const auto reply = respond(seen);
      return reply
                 ? TestSupport::FakeUrlSession::Respond(reply->status, reply->body, reply->headers)
                 : TestSupport::FakeUrlSession::Never();
    });
    return session;
  }

 private:
  static std::string Lower(std::string text) {
    for (char& letter : text) {
      if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
  }

  Respond respond_;
};

template <class Peer>
class UrlSessionContractTest : public testing::Test {
 protected:
  void Answer(Respond respond) {
    peer_ = std::make_unique<Peer>([this, respond = std::move(respond)](const Seen& seen) {
      ++arrived_;
      return respond(seen);
    });
    session_ = peer_->Session();
  }
  void AnswerNever() {
    Answer([](const Seen&) { return std::nullopt; });
  }
  void AnswerHello() {
    Answer([](const Seen&) { return Reply{200, "hello", {}}; });
  }

  // What the server sees of a POST.
  Seen SeenOfPost(const std::string& body, const std::vector<Platform::UrlHeader>& headers) {
    const auto seen = std::make_shared<TestSupport::Guarded<Seen>>();
    Answer([seen](const Seen& request) {
      seen->Set(request);
      return Reply{};
    });
    UrlRequest request = RequestFor(peer_->Url());
    request.method = "POST";
    request.body = body;
    request.headers = headers;
    EXPECT_THAT(Fetch(*session_, request), Brings(200, ""));
    return seen->Get();
  }

  std::atomic<int> arrived_{0};
  std::unique_ptr<Peer> peer_;
  std::unique_ptr<Platform::UrlSession> session_;
};

using Peers = testing::Types<CurlPeer, DoublePeer>;
TYPED_TEST_SUITE(UrlSessionContractTest, Peers);

TYPED_TEST(UrlSessionContractTest, DeliversStatusHeadersAndBody) {
  this->Answer([](const Seen&) {
    return Reply{200, std::string("a\0b", 3), {{"etag", "\"v1\""}, {"x-request-id", "7"}}};
  });
  const UrlOutcome outcome = Fetch(*this->session_, this->peer_->Url());
  ASSERT_THAT(outcome, Brings(200, std::string("a\0b", 3)));
  EXPECT_EQ(outcome.response->headers.at("ETag"), "\"v1\"");
  EXPECT_EQ(outcome.response->headers.at("X-Request-Id"), "7");
}

TYPED_TEST(UrlSessionContractTest, DeliversAnErrorStatusAsAResponse) {
  for (const int status : {404, 500}) {
    this->Answer([status](const Seen&) { return Reply{status, "sorry", {}}; });
    EXPECT_THAT(Fetch(*this->session_, this->peer_->Url()), Brings(status, "sorry"));
  }
}

TYPED_TEST(UrlSessionContractTest, SendsMethodHeadersAndBody) {
  const Seen seen = this->SeenOfPost("{\"hits\": 1}",
                                     {{"User-Agent", "shop"}, {"X-Empty", ""}, {"X-Tab", "a\tb"}});
  EXPECT_EQ(seen.method, "POST");
  EXPECT_EQ(seen.body, "{\"hits\": 1}");
  EXPECT_EQ(seen.headers.at("user-agent"), "shop");
  EXPECT_EQ(seen.headers.at("x-empty"), "");
  EXPECT_EQ(seen.headers.at("x-tab"), "a\tb");
}

TYPED_TEST(UrlSessionContractTest, LeavesOutTheConnectionsOwnHeaders) {
  const Seen seen = this->SeenOfPost(
      "four", {{"content-length", "99"}, {"Transfer-Encoding", "chunked"}, {"TE", "gzip"}});
  EXPECT_FALSE(seen.headers.contains("transfer-encoding"));
  EXPECT_FALSE(seen.headers.contains("te"));
  EXPECT_EQ(seen.body, "four");
}

TYPED_TEST(UrlSessionContractTest, RefusesHeadersThatWouldBecomeSeveral) {
  this->AnswerHello();
  const std::vector<Platform::UrlHeader> headers = {{"X", "a\r\nY: b"},
                                                    {"X", "a\nb"},
                                                    {"X", "a\r"},
                                                    {"X", std::string("a\0b", 3)},
                                                    {"X\r\nY", "a"},
                                                    {"X:", "a"},
                                                    {"", "a"},
                                                    {"X Y", "a"},
                                                    {"X", "escape \x1b here"},
                                                    {"X", "\x7f"},
                                                    {"X\xc3", "a"},
                                                    {"X;", ""},
                                                    {std::string("X\0", 2), "a"}};
  for (const Platform::UrlHeader& header : headers) {
    UrlRequest request = RequestFor(this->peer_->Url());
    request.headers = {header};
    EXPECT_THAT(Fetch(*this->session_, request), FailsWith(UrlFailure::BadRequest)) << header.name;
  }
  EXPECT_EQ(this->arrived_, 0);
}

TYPED_TEST(UrlSessionContractTest, RefusesWhatIsNoUrlOfAServer) {
  this->AnswerHello();
  for (const std::string url :
       {"", "no url", "https://", "https:///path", "https://host/a b", "https://host/%",
        "https://[::1/", "https://host:99999/", "/relative", "https://h/\r\nX: y"}) {
    EXPECT_THAT(Fetch(*this->session_, url), FailsWith(UrlFailure::BadRequest)) << url;
  }
  EXPECT_THAT(Fetch(*this->session_, std::string("https://h/a\0b", 13)),
              FailsWith(UrlFailure::BadRequest));
}

TYPED_TEST(UrlSessionContractTest, RefusesEverySchemeButHttps) {
  this->AnswerHello();
  for (const std::string url : {"http://127.0.0.1/https", "ftp://127.0.0.1/https", "file://h/https",
                                "dict://127.0.0.1/https", "httpss://127.0.0.1/"}) {
    EXPECT_THAT(Fetch(*this->session_, url), FailsWith(UrlFailure::CleartextRefused)) << url;
  }
}

TYPED_TEST(UrlSessionContractTest, RefusesOtherMethods) {
  this->AnswerHello();
  for (const std::string method : {"", "get", "PUT", "GET / HTTP/1.1\r\nX: y\r\n\r\nGET"}) {
    UrlRequest request = RequestFor(this->peer_->Url());
    request.method = method;
    EXPECT_THAT(Fetch(*this->session_, request), FailsWith(UrlFailure::BadRequest)) << method;
  }
  EXPECT_EQ(this->arrived_, 0);
}

TYPED_TEST(UrlSessionContractTest, CompletesOnAThreadOfItsOwn) {
  this->AnswerHello();
  std::promise<std::thread::id> thread;
  this->session_->Start(RequestFor(this->peer_->Url()), [&](const auto&, const auto&) {
    thread.set_value(std::this_thread::get_id());
  });
  EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
}

TYPED_TEST(UrlSessionContractTest, CancelsARequestThatIsUnderWay) {
  this->AnswerNever();
  PendingUrl pending(*this->session_, RequestFor(this->peer_->Url()));
  EXPECT_TRUE(WaitUntil([this] { return this->arrived_ == 1; }));
  EXPECT_FALSE(pending.IsOver());
  this->session_->Cancel(pending.Task());
  EXPECT_THAT(pending.Wait(), FailsWith(UrlFailure::Cancelled));
  this->session_->Cancel(pending.Task());
}

TYPED_TEST(UrlSessionContractTest, CancelsNothingElse) {
  this->AnswerHello();
  this->session_->Cancel(12345);
  PendingUrl first(*this->session_, RequestFor(this->peer_->Url()));
  this->session_->Cancel(first.Task() + 1);
  EXPECT_THAT(first.Wait(), Brings(200, "hello"));
  this->session_->Cancel(first.Task());
  EXPECT_THAT(Fetch(*this->session_, this->peer_->Url()), Brings(200, "hello"));
}

TYPED_TEST(UrlSessionContractTest, CancelsWhatIsUnderWayWhenItGoes) {
  this->AnswerNever();
  std::vector<std::unique_ptr<PendingUrl>> pending;
  for (int i = 0; i < 64; ++i) {
    pending.push_back(
        std::make_unique<PendingUrl>(*this->session_, RequestFor(this->peer_->Url())));
  }
  EXPECT_TRUE(WaitUntil([this] { return this->arrived_ >= 1; }));
  this->session_.reset();
  for (const auto& each : pending) {
    ASSERT_TRUE(each->IsOver());
    EXPECT_THAT(each->Wait(), FailsWith(UrlFailure::Cancelled));
  }
}

TYPED_TEST(UrlSessionContractTest, MayGoInsideACompletion) {
  this->AnswerHello();
  std::promise<void> gone;
  std::shared_ptr<Platform::UrlSession> last(std::move(this->session_));
  Platform::UrlSession& session = *last;
  session.Start(RequestFor(this->peer_->Url()),
                [&gone, last = std::move(last)](const auto&, const auto&) mutable {
                  last.reset();
                  gone.set_value();
                });
  EXPECT_EQ(gone.get_future().wait_for(TestSupport::kDefaultDeadline), std::future_status::ready);
  EXPECT_TRUE(WaitUntil([] { return Platform::JoiningThread::JoinThoseDone(); }));
}

TYPED_TEST(UrlSessionContractTest, SurvivesACompletionThatThrows) {
  this->AnswerHello();
  this->session_->Start(RequestFor(this->peer_->Url()),
                        [](const auto&, const auto&) { throw std::runtime_error("oops"); });
  EXPECT_THAT(Fetch(*this->session_, this->peer_->Url()), Brings(200, "hello"));
}

TYPED_TEST(UrlSessionContractTest, DoesWithoutACompletion) {
  this->AnswerHello();
  this->session_->Start(RequestFor(this->peer_->Url()), nullptr);
  EXPECT_TRUE(WaitUntil([this] { return this->arrived_ == 1; }));
}

TYPED_TEST(UrlSessionContractTest, TakesARequestInsideACompletion) {
  this->AnswerHello();
  std::promise<UrlOutcome> second;
  this->session_->Start(RequestFor(this->peer_->Url()), [&](const auto&, const auto&) {
    this->session_->Start(
        RequestFor(this->peer_->Url()),
        [&](std::shared_ptr<const Platform::UrlResponse> response, const Platform::Error& error) {
          second.set_value({std::move(response), error});
        });
  });
  EXPECT_THAT(second.get_future().get(), Brings(200, "hello"));
}

TYPED_TEST(UrlSessionContractTest, ServesSeveralThreadsAtOnce) {
  this->AnswerHello();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int j = 0; j < 10; ++j) {
        EXPECT_THAT(Fetch(*this->session_, this->peer_->Url()), Brings(200, "hello"));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(this->arrived_, 40);
}

}  // namespace
