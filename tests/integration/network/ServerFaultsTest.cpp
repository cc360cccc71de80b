// Servers that are slow, silent, broken or not to be trusted, and what is left behind.

#include <memory>
#include <string>
#include <vector>

#include "CaseFixture.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Platform::UrlFailure;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::PendingUrl;
using TestSupport::RequestFor;
using TestSupport::WaitUntil;

using ServerFaultsTest = CaseFixture;
OVER_EVERY_SERVER(ServerFaultsTest);

TEST_P(ServerFaultsTest, WaitsForASlowFirstByte) {
  EXPECT_THAT(Fetch(Url("/live/slow")), Brings(200, "late"));
}

// The whole takes longer than the idle timeout; each byte begins it anew.
TEST_P(ServerFaultsTest, WaitsForABodyThatDrips) {
  // Far longer than from byte to byte, or a busy machine would pass for a silent server.
  constexpr auto kIdleTimeout = 3s;
  Platform::UrlRequest request = RequestFor(Url("/live/drip"));
  request.idleTimeout = kIdleTimeout;
  const auto start = Clock::now();
  EXPECT_THAT(TestSupport::Fetch(*session, request), Brings(200, "0123456789"));
  EXPECT_GT(Clock::now() - start, kIdleTimeout);
}

TEST_P(ServerFaultsTest, EndsATransferThatFallsSilent) {
  const auto start = Clock::now();
  EXPECT_THAT(FetchImpatiently(Url("/live/stall")), FailsWith(UrlFailure::TimedOut));
  EXPECT_GE(Clock::now() - start, 1s);
}

TEST_P(ServerFaultsTest, EndsATransferThatDripsForTooLong) {
  Platform::UrlRequest request = RequestFor(Url("/live/drip"));
  request.idleTimeout = 20s;
  request.wholeTimeout = 1s;
  EXPECT_THAT(TestSupport::Fetch(*session, request), FailsWith(UrlFailure::TimedOut));
}

TEST_P(ServerFaultsTest, EndsARequestThatIsNeverAnswered) {
  EXPECT_THAT(FetchImpatiently(Url("/live/hang")), FailsWith(UrlFailure::TimedOut));
  EXPECT_TRUE(WaitUntil([this] { return Server().Hanging() == 0; }));
}

TEST_P(ServerFaultsTest, EndsAConnectionThatIsAcceptedAndNeverSpeaks) {
  EXPECT_THAT(FetchImpatiently(Server().SilentUrl()), FailsWith(UrlFailure::TimedOut));
}

TEST_P(ServerFaultsTest, RefusesATruncatedBody) {
  EXPECT_THAT(Fetch(Url("/live/truncated")), FailsWith(UrlFailure::ConnectionLost));
}

TEST_P(ServerFaultsTest, RefusesABodyWhoseConnectionIsDroppedInTheMiddle) {
  EXPECT_THAT(Fetch(Url("/live/torn")), FailsWith(UrlFailure::ConnectionLost));
}

TEST_P(ServerFaultsTest, RefusesAConnectionThatIsDroppedWithoutAWord) {
  EXPECT_THAT(Fetch(Url("/reset")), FailsWith(UrlFailure::ConnectionLost));
}

TEST_P(ServerFaultsTest, RefusesEveryCertificateThatCannotBeTrusted) {
  for (const ServerCertificate certificate :
       {ServerCertificate::Expired, ServerCertificate::NotYetValid, ServerCertificate::SelfSigned,
        ServerCertificate::OfAnotherHost, ServerCertificate::OfAnUnknownAuthority}) {
    EXPECT_THAT(Fetch(Server().Url("/hello.txt", certificate)), FailsWith(UrlFailure::NotTrusted))
        << static_cast<int>(certificate);
  }
}

TEST_P(ServerFaultsTest, CancelsSixtyFourRequestsUnderWayWhenTheSessionGoes) {
  constexpr int kRequests = 64;
  auto going =
      std::make_unique<Platform::CurlUrlSession>(TestSupport::TrustedServer::SessionOptions());
  std::vector<std::unique_ptr<PendingUrl>> pending;
  for (int i = 0; i < kRequests; ++i) {
    pending.push_back(std::make_unique<PendingUrl>(*going, RequestFor(Url("/live/hang"))));
  }
  EXPECT_TRUE(WaitUntil([this] { return Server().Hanging() == kRequests; }));
  const auto start = Clock::now();
  going.reset();
  EXPECT_LT(Clock::now() - start, 5s);
  for (const auto& each : pending) {
    ASSERT_TRUE(each->IsOver());
    EXPECT_THAT(each->Wait(), FailsWith(UrlFailure::Cancelled));
  }
  EXPECT_TRUE(WaitUntil([this] { return Server().Hanging() == 0; }));
}

}  // namespace
