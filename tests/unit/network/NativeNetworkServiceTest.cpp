#include <chrono>
#include <future>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "VelmoraCore/SdkError.h"
#include "services/network/NativeNetworkService.h"
#include "services/system/NativeSystemInfoService.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using Platform::UrlFailure;
using Platform::UrlRequest;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::FakeUrlSession;
using TestSupport::LogLevel;
using Velmora::HttpCommandType;
using Velmora::HttpConnectionInterface;
using Headers = std::map<std::string, std::string>;
using ConnectionPtr = std::shared_ptr<HttpConnectionInterface>;

constexpr const char* kTag = "NativeNetworkService";
const std::string kUrl = "https://example.com/a?b=c";

class NativeNetworkServiceTest : public testing::Test {
 protected:
  void AnswerWith(const FakeUrlSession::Answer& answer) {
    host.urlSession->SetServer([answer](const UrlRequest&) { return answer; });
  }

  // Sends a request and waits until it has been taken.
  UrlRequest Sent(HttpCommandType command, const std::string& body, const Headers& headers = {}) {
    AnswerWith(FakeUrlSession::Respond(200));
    service->ConnectUrl(kUrl, command, body, headers, 30s, 40s);
    return host.urlSession->Requests().back();
  }

  // Until everything that was started before is over: requests are answered in order.
  void WaitForTheSession() {
    std::promise<void> reached;
    UrlRequest request;
    request.url = kUrl;
    host.urlSession->Start(request, [&reached](const auto&, const auto&) { reached.set_value(); });
    EXPECT_EQ(reached.get_future().wait_for(TestSupport::kDefaultDeadline),
              std::future_status::ready);
  }

  void ExpectRefusal(const std::string& url, HttpCommandType command, const std::string& code,
                     const std::string& message) {
    for (const bool isAsync : {false, true}) {
      try {
        if (isAsync) {
          service->ConnectUrlAsync(url, command, "", {}, 1s, 1s, nullptr);
        } else {
          service->ConnectUrl(url, command, "", {}, 1s, 1s);
        }
        ADD_FAILURE() << url << " was not refused";
      } catch (const Velmora::SdkError& error) {
        EXPECT_EQ(error.GetCode(), code);
        EXPECT_EQ(error.GetMessage(), message);
        EXPECT_EQ(error.GetDebugInfo().GetSourceLocation(),
                  "src/services/network/NativeNetworkService");
      }
    }
    EXPECT_THAT(host.urlSession->Requests(), IsEmpty());
  }

  TestSupport::LogCapture log;
  TestSupport::FakeHost host;
  const std::shared_ptr<Velmora::SystemInfoServiceInterface> systemInfo =
      Velmora::CreateNativeSystemInfoService();
  std::shared_ptr<Velmora::NetworkServiceInterface> service =
      Velmora::CreateNativeNetworkService(systemInfo);
};

TEST_F(NativeNetworkServiceTest, CannotBeMadeWithoutSystemInformation) {
  try {
    Velmora::CreateNativeNetworkService(nullptr);
    FAIL() << "nothing was thrown";
  } catch (const Velmora::SdkError& error) {
    EXPECT_EQ(error.GetCode(), "platform_services.missing_service");
    EXPECT_EQ(error.GetMessage(), "SystemInfo Service");
  }
}

TEST_F(NativeNetworkServiceTest, RefusesWhatIsNoUrl) {
  for (const std::string url : {"", "https", "https:/x", "https//x", "https://", "https://a b",
                                "https://a\r\nX: y", "://https"}) {
    ExpectRefusal(url, HttpCommandType::Get, "std.logic_error.invalid_argument", "Invalid url");
  }
}

TEST_F(NativeNetworkServiceTest, RefusesAUrlWithoutHttpsAnywhere) {
  for (const std::string url :
       {"http://example.com/", "http://example.com/HTTPS", "ftp://x/http"}) {
    ExpectRefusal(url, HttpCommandType::Get, "std.logic_error.invalid_argument", "Invalid url");
  }
}

TEST_F(NativeNetworkServiceTest, LetsAUrlOfAnotherSchemePassThatHoldsHttps) {
  log.ExpectLine(LogLevel::Debug, kTag,
                 "Nothing came of the request to ftp://example.com/https: Only https is allowed.");
  EXPECT_EQ(service->ConnectUrl("ftp://example.com/https", HttpCommandType::Get, "", {}, 0s, 0s),
            nullptr);
  EXPECT_EQ(host.urlSession->Requests().front().url, "ftp://example.com/https");
  WaitForTheSession();
}

TEST_F(NativeNetworkServiceTest, RefusesOtherCommands) {
  ExpectRefusal(kUrl, static_cast<HttpCommandType>(2), "network.unsupported_http_command_type",
                "Only support GET and POST NOW");
}

TEST_F(NativeNetworkServiceTest, ChecksTheUrlBeforeTheCommand) {
  ExpectRefusal("http://x", static_cast<HttpCommandType>(7), "std.logic_error.invalid_argument",
                "Invalid url");
}

TEST_F(NativeNetworkServiceTest, SendsTheBodyWithPostOnly) {
  const UrlRequest post = Sent(HttpCommandType::Post, "payload");
  EXPECT_EQ(post.method, "POST");
  EXPECT_EQ(post.body, "payload");
  EXPECT_EQ(post.url, kUrl);
  const UrlRequest get = Sent(HttpCommandType::Get, "payload");
  EXPECT_EQ(get.method, "GET");
  EXPECT_EQ(get.body, "");
  EXPECT_EQ(Sent(HttpCommandType::Post, "").body, "");
}

TEST_F(NativeNetworkServiceTest, CrossesTheTimeouts) {
  const UrlRequest request = Sent(HttpCommandType::Get, "");
  EXPECT_EQ(request.wholeTimeout, 30s);
  EXPECT_EQ(request.idleTimeout, 40s);
}

TEST_F(NativeNetworkServiceTest, SendsTheDevicesUserAgentFirstAndThenTheCallersHeaders) {
  const UrlRequest request =
      Sent(HttpCommandType::Get, "", {{"X-B", "2"}, {"X-A", "1"}, {"Accept", "text/html"}});
  EXPECT_THAT(request.headers,
              ElementsAre(Platform::UrlHeader{"User-Agent", systemInfo->GetDefaultUserAgent()},
                          Platform::UrlHeader{"Accept", "text/html"},
                          Platform::UrlHeader{"X-A", "1"}, Platform::UrlHeader{"X-B", "2"}));
}

TEST_F(NativeNetworkServiceTest, LetsTheCallerReplaceTheUserAgent) {
  EXPECT_THAT(Sent(HttpCommandType::Get, "", {{"User-Agent", "mine"}}).headers,
              ElementsAre(Platform::UrlHeader{"User-Agent", "mine"}));
  EXPECT_THAT(Sent(HttpCommandType::Get, "", {{"user-agent", "mine"}}).headers,
              ElementsAre(Platform::UrlHeader{"user-agent", "mine"}));
}

TEST_F(NativeNetworkServiceTest, KeepsTheLastOfHeadersThatDifferInCaseOnly) {
  EXPECT_THAT(
      Sent(HttpCommandType::Get, "", {{"User-Agent", "a"}, {"X-A", "upper"}, {"x-a", "lower"}})
          .headers,
      ElementsAre(Platform::UrlHeader{"User-Agent", "a"}, Platform::UrlHeader{"x-a", "lower"}));
}

TEST_F(NativeNetworkServiceTest, GivesTheResponse) {
  AnswerWith(FakeUrlSession::Respond(200, "body", {{"ETag", "\"1\""}}));
  const ConnectionPtr connection =
      service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, 30s, 30s);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->GetResponseCode(), 200);
  EXPECT_EQ(connection->GetResponse(), "body");
  EXPECT_EQ(connection->GetResponsePropertyValue("ETag"), "\"1\"");
}

TEST_F(NativeNetworkServiceTest, GivesAnErrorStatusAsAResponse) {
  AnswerWith(FakeUrlSession::Respond(404, "not here"));
  const ConnectionPtr connection =
      service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, 30s, 30s);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->GetResponseCode(), 404);
  EXPECT_EQ(connection->GetResponseMessage(), "Not Found");
  EXPECT_EQ(connection->GetResponse(), "not here");
}

TEST_F(NativeNetworkServiceTest, WaitsForTheWholeDeadlineWhenTheTransportFails) {
  AnswerWith(FakeUrlSession::Fail(UrlFailure::NotConnected));
  log.ExpectLine(LogLevel::Debug, kTag,
                 "Nothing came of the request to https://example.com/a: The test says so.");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, 0s, 1s), nullptr);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 1s);
}

TEST_F(NativeNetworkServiceTest, ReturnsAtOnceWithBothTimeoutsZero) {
  AnswerWith(FakeUrlSession::Never());
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, 0s, 0s), nullptr);
  EXPECT_EQ(service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, -5s, -5s), nullptr);
  EXPECT_LT(std::chrono::steady_clock::now() - start, TestSupport::kDefaultDeadline);
  log.AllowLines(LogLevel::Debug, kTag, testing::HasSubstr("Nothing came of the request"));
}

TEST_F(NativeNetworkServiceTest, TakesTimeoutsBeyondTheClock) {
  AnswerWith(FakeUrlSession::Respond(204));
  constexpr std::chrono::seconds kEndless{std::numeric_limits<std::int64_t>::max()};
  EXPECT_NE(service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, kEndless, kEndless), nullptr);
  EXPECT_NE(service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, kEndless, 0s), nullptr);
  constexpr std::chrono::seconds kLongAgo{std::numeric_limits<std::int64_t>::min()};
  service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, kLongAgo, kLongAgo);
  WaitForTheSession();
}

TEST_F(NativeNetworkServiceTest, SurvivesAResponseAfterTheDeadline) {
  std::promise<void> deadlinePassed;
  host.urlSession->SetServer([passed = deadlinePassed.get_future().share()](const UrlRequest&) {
    passed.wait();
    return FakeUrlSession::Respond(200, "too late");
  });
  EXPECT_EQ(service->ConnectUrl(kUrl, HttpCommandType::Get, "", {}, 0s, 0s), nullptr);
  deadlinePassed.set_value();
  WaitForTheSession();
}

TEST_F(NativeNetworkServiceTest, CallsBackOnTheSessionsThread) {
  AnswerWith(FakeUrlSession::Respond(200, "async"));
  std::promise<std::pair<ConnectionPtr, std::thread::id>> called;
  service->ConnectUrlAsync(kUrl, HttpCommandType::Get, "", {}, 30s, 30s,
                           [&called](const ConnectionPtr& connection) {
                             called.set_value({connection, std::this_thread::get_id()});
                           });
  const auto [connection, thread] = called.get_future().get();
  EXPECT_EQ(connection->GetResponse(), "async");
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(NativeNetworkServiceTest, NeverCallsBackWhenTheTransportFails) {
  AnswerWith(FakeUrlSession::Fail(UrlFailure::TimedOut));
  bool wasCalled = false;
  service->ConnectUrlAsync(kUrl, HttpCommandType::Get, "", {}, 30s, 30s,
                           [&wasCalled](const ConnectionPtr&) { wasCalled = true; });
  log.WaitForLine(LogLevel::Debug, kTag,
                  "Nothing came of the request to https://example.com/a: The test says so.");
  WaitForTheSession();
  EXPECT_FALSE(wasCalled);
}

TEST_F(NativeNetworkServiceTest, DoesWithoutACallback) {
  AnswerWith(FakeUrlSession::Respond(200));
  service->ConnectUrlAsync(kUrl, HttpCommandType::Get, "", {}, 30s, 30s, nullptr);
  WaitForTheSession();
}

TEST_F(NativeNetworkServiceTest, LogsACallbackThatThrows) {
  AnswerWith(FakeUrlSession::Respond(200));
  service->ConnectUrlAsync(kUrl, HttpCommandType::Get, "", {}, 30s, 30s,
                           [](const ConnectionPtr&) { throw std::runtime_error("oops"); });
  log.WaitForLine(LogLevel::Error, kTag,
                  "What was to handle the response of https://example.com/a failed: oops");
}

TEST_F(NativeNetworkServiceTest, FinishesRequestsWithoutTheService) {
  std::promise<void> serviceGone;
  host.urlSession->SetServer([gone = serviceGone.get_future().share()](const UrlRequest&) {
    gone.wait();
    return FakeUrlSession::Respond(200, "orphan");
  });
  std::promise<std::string> body;
  service->ConnectUrlAsync(
      kUrl, HttpCommandType::Get, "", {}, 30s, 30s,
      [&body](const ConnectionPtr& connection) { body.set_value(connection->GetResponse()); });
  service.reset();
  serviceGone.set_value();
  EXPECT_EQ(body.get_future().get(), "orphan");
}

TEST_F(NativeNetworkServiceTest, TreatsADeviceWithoutASessionAsAFailedTransport) {
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  const auto failing = Velmora::CreateNativeNetworkService(systemInfo);
  log.ExpectLine(LogLevel::Debug, kTag,
                 "The request to https://example.com/a cannot be sent: The device failed.");
  failing->ConnectUrlAsync(kUrl, HttpCommandType::Get, "", {}, 1s, 1s, nullptr);
}

TEST_F(NativeNetworkServiceTest, ServesSeveralThreadsAtOnce) {
  host.urlSession->SetServer(
      [](const UrlRequest& request) { return FakeUrlSession::Respond(200, request.url); });
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this, i] {
      const std::string url = kUrl + std::to_string(i);
      for (int j = 0; j < 100; ++j) {
        const auto connection = service->ConnectUrl(url, HttpCommandType::Get, "", {}, 30s, 30s);
        EXPECT_EQ(connection->GetResponse(), url);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
