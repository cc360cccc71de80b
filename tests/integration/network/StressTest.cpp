// Many requests, sixty-four at once.

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <gmock/gmock.h>
#include <malloc.h>
#include <unistd.h>

#include "CaseServer.h"
#include "support/UrlSessionCalls.h"
#include "support/tls/TrustedServer.h"

namespace {

namespace fs = std::filesystem;

using Platform::CurlUrlSession;

constexpr int kAtOnce = 64;

int NumberOfRequests() {
  constexpr int kOrdinarily = 2'000;
  const char* asked = std::getenv("QEXCORE_STRESS_REQUESTS");
  return asked != nullptr ? std::atoi(asked) : kOrdinarily;
}

// Runs so many requests, that many at once, and counts those that failed.
class Volley {
 public:
  Volley(Platform::UrlSession& session, std::string url)
      : session_(session), url_(std::move(url)) {}

  int Run(int count) {
    std::unique_lock lock(mutex_);
    for (int i = 0; i < count; ++i) {
      changed_.wait(lock, [this] { return running_ < kAtOnce; });
      ++running_;
      lock.unlock();
      StartOne();
      lock.lock();
    }
    changed_.wait(lock, [this] { return running_ == 0; });
    return failed_;
  }

 private:
  void StartOne() {
    session_.Start(TestSupport::RequestFor(url_),
                   [this](const std::shared_ptr<const Platform::UrlResponse>& response,
                          const Platform::Error&) {
                     const std::lock_guard lock(mutex_);
                     if (!response || response->body != "hello\n") ++failed_;
                     --running_;
                     changed_.notify_all();
                   });
  }

  Platform::UrlSession& session_;
  const std::string url_;
  std::mutex mutex_;
  std::condition_variable changed_;
  int running_ = 0;
  int failed_ = 0;
};

std::ptrdiff_t EntriesOf(const char* directory) {
  return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

std::size_t BytesInUse() { return ::mallinfo2().uordblks; }

// Runs the requests, once a smaller number of them has made what is made once. `settle` waits until
// the server has forgotten them.
void ExpectNothingLeftBehind(const std::string& url, const std::function<void()>& settle) {
  const int requests = NumberOfRequests();
  CurlUrlSession session(TestSupport::TrustedServer::SessionOptions());
  EXPECT_EQ(Volley(session, url).Run(requests / 5), 0);
  settle();
  const auto handles = EntriesOf("/proc/self/fd");
  const auto threads = EntriesOf("/proc/self/task");
  const auto bytes = BytesInUse();
  EXPECT_EQ(Volley(session, url).Run(requests), 0);
  settle();
  EXPECT_EQ(EntriesOf("/proc/self/fd"), handles);
  EXPECT_EQ(EntriesOf("/proc/self/task"), threads);
  // Sanitizers count no bytes here. Tables that grew for 64 at once may stay; a byte for each
  // request may not.
  constexpr std::size_t kTables = 100'000;
  EXPECT_LT(BytesInUse(), bytes + kTables + static_cast<std::size_t>(requests) * 4);
}

TEST(Stress, LeavesNoHandleNoThreadAndNoByteBehindOverNginx) {
  const auto server = MakeNginx2Server();
  ExpectNothingLeftBehind(server->Url("/hello.txt"), [] {});
}

TEST(Stress, LeavesNoHandleNoThreadAndNoByteBehindOverLoopback) {
  const TestSupport::TrustedServer server(
      [](const TestSupport::WireRequest&, TestSupport::WireConnection& connection) {
        connection.Respond(200, "hello\n");
      });
  ExpectNothingLeftBehind(server.Url(), [&server] {
    // It lets go of connections that have ended when the next one comes.
    const auto isQuiet = [&server] { return server.Server().Open() == 0; };
    EXPECT_TRUE(TestSupport::WaitUntil(isQuiet));
    CurlUrlSession last(TestSupport::TrustedServer::SessionOptions());
    EXPECT_THAT(TestSupport::Fetch(last, server.Url()), TestSupport::Brings(200, "hello\n"));
    EXPECT_TRUE(TestSupport::WaitUntil(isQuiet));
  });
}

}  // namespace
