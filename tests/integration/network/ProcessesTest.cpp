// Processes that end with requests under way, and processes that share one cache.

#include <atomic>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ChildProgram.h"
#include "QEXCore_iOS/Platform/Host.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"
#include "support/UrlSessionCalls.h"
#include "support/tls/TrustedServer.h"

namespace {

using TestSupport::LoopbackServer;
using TestSupport::ScopedEnvironment;
using TestSupport::TrustedServer;
using TestSupport::WireConnection;
using TestSupport::WireRequest;

class ProcessesTest : public testing::Test {
 protected:
  static std::unique_ptr<ChildProgram> Start(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {WORKER_PROGRAM};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return std::make_unique<ChildProgram>(all, "");
  }

  // Named after the program, as its caches are.
  std::string CacheFolder() const {
    return home_.PathOf("cache/" + std::filesystem::path(WORKER_PROGRAM).filename().string() +
                        "/krvdownloadcache");
  }

  const TestSupport::TemporaryDirectory home_;
  const ScopedEnvironment trust_{"SSL_CERT_FILE", TrustedServer::AuthorityFile()};
  const ScopedEnvironment data_{"XDG_DATA_HOME", home_.PathOf("data")};
  const ScopedEnvironment cache_{"XDG_CACHE_HOME", home_.PathOf("cache")};
};

TEST_F(ProcessesTest, EndInGoodOrderWithRequestsUnderWay) {
  const TrustedServer server(
      [](const WireRequest&, WireConnection& connection) { connection.WaitForClient(); });
  // Before, during and after the handshakes.
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(Start({"hang", server.Url("/"), std::to_string(5 * round)})->Wait(), 0);
  }
}

TEST_F(ProcessesTest, SendCleartextWhereTheirInformationDictionaryAllowsIt) {
  const LoopbackServer server({}, [](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, std::string(100'000, 'c'));
  });
  EXPECT_THAT(TestSupport::Fetch(*Platform::Host::CreateDefault().urlSession, server.Url("/https")),
              TestSupport::FailsWith(Platform::UrlFailure::CleartextRefused));

  // The dictionary lies beside the program.
  std::filesystem::copy_file(WORKER_PROGRAM, home_.PathOf("worker"));
  home_.WriteFile("Info.plist",
                  "<plist version=\"1.0\"><dict><key>NSAppTransportSecurity</key><dict>"
                  "<key>NSAllowsArbitraryLoads</key><true/></dict></dict></plist>");
  ChildProgram allowed({home_.PathOf("worker"), "download", server.Url("/https"), "1"}, "");
  EXPECT_EQ(allowed.Wait(), 0);
  EXPECT_EQ(server.Accepted(), 1);
}

TEST_F(ProcessesTest, ShareACacheWithoutEverSeeingHalfAFile) {
  std::atomic<int> version{0};
  const TrustedServer server([&version](const WireRequest&, WireConnection& connection) {
    const int tag = ++version;
    connection.Respond(200, std::string(100'000, 'b'),
                       {{"ETag", "\"" + std::to_string(tag) + "\""},
                        {"Last-Modified", "Tue, 05 Mar 2024 10:20:30 GMT"}});
  });
  const auto first = Start({"download", server.Url("/file"), "100"});
  const auto second = Start({"download", server.Url("/file"), "100"});
  EXPECT_EQ(first->Wait(), 0);
  EXPECT_EQ(second->Wait(), 0);
  EXPECT_EQ(version, 200);
}

// What one of them is writing, the other does not delete before it has its name.
TEST_F(ProcessesTest, PruneACacheThatAnotherOneDownloadsInto) {
  std::atomic<int> version{0};
  const TrustedServer server([&version](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, std::string(100'000, 'b'),
                       {{"ETag", "\"" + std::to_string(++version) + "\""},
                        {"Last-Modified", "Tue, 05 Mar 2024 10:20:30 GMT"}});
  });
  const std::string url = server.Url("/file");
  const auto pruner = Start({"prune", url, "1000000000"});
  for (int round = 1; round <= 12; ++round) {
    EXPECT_EQ(Start({"download", url, "1"})->Wait(), 0);
    const auto entries = std::filesystem::directory_iterator(CacheFolder());
    EXPECT_EQ(std::distance(entries, {}), 1) << round;
  }
  EXPECT_EQ(version, 12);
  EXPECT_FALSE(pruner->HasEnded());
  pruner->Signal(SIGKILL);
  EXPECT_EQ(pruner->Wait(), -SIGKILL);
}

TEST_F(ProcessesTest, LeaveWholeFilesWhenTheyAreKilled) {
  std::atomic<int> served{0};
  const TrustedServer server([&served](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, std::string(100'000, 'b'),
                       {{"ETag", "\"" + std::to_string(++served) + "\""}});
  });
  for (int round = 0; round < 10; ++round) {
    const int before = served;
    const auto victim = Start({"download", server.Url("/file"), "1000000"});
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return served > before + round; }));
    victim->Signal(SIGKILL);
    EXPECT_EQ(victim->Wait(), -SIGKILL);
  }
  EXPECT_EQ(Start({"download", server.Url("/file"), "1"})->Wait(), 0);
}

}  // namespace
