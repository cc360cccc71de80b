// The download cache against servers that behave, and servers that do not.

#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "ChildProgram.h"
#include "NetworkFixture.h"
#include "support/Guarded.h"
#include "support/UrlSessionCalls.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using TestSupport::LogLevel;
using TestSupport::ReadFileBytes;
using TestSupport::TrustedServer;
using TestSupport::WaitUntil;
using TestSupport::WireConnection;
using TestSupport::WireRequest;

class CacheTest : public NetworkFixture {
 protected:
  std::vector<std::string> Cached() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(CacheFolder())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  void DownloadAndForget(const std::string& url) { manager->GetFileAsync(url, "", nullptr); }
};

const std::map<std::string, std::string> kTagged = {
    {"ETag", "\"ab\""}, {"Last-Modified", "Tue, 05 Mar 2024 10:20:30 GMT"}};

TEST_F(CacheTest, AsksWithExactlyWhatTheServerSent) {
  for (const std::string tag :
       {"\"ab\"", "W/\"ab\"", "\"a,b c\"", "plain", "\"\xe9\xff\"", "\"\""}) {
    TestSupport::Guarded<std::map<std::string, std::string>> seen;
    const TrustedServer server([&](const WireRequest& request, WireConnection& connection) {
      seen.Set(request.headers);
      const bool isKnown = request.headers.contains("if-none-match");
      connection.Respond(isKnown ? 304 : 200, isKnown ? "" : "body",
                         {{"ETag", tag}, {"Last-Modified", kTagged.at("Last-Modified")}});
    });
    const std::string path = Download(server.Url("/file"));
    EXPECT_EQ(ReadFileBytes(path), "body");
    EXPECT_EQ(Download(server.Url("/file")), path);
    EXPECT_EQ(seen.Get().at("if-none-match"), tag);
    EXPECT_EQ(seen.Get().at("if-modified-since"), kTagged.at("Last-Modified"));
  }
}

TEST_F(CacheTest, NeverTakesABodyThatWasCutForAFile) {
  std::atomic<bool> isBroken{true};
  const TrustedServer server([&](const WireRequest&, WireConnection& connection) {
    if (!isBroken) {
      connection.Respond(200, "whole", kTagged);
      return;
    }
    connection.Send("HTTP/1.1 200 OK\r\nETag: \"ab\"\r\nContent-Length: 100\r\n\r\nhalf");
    connection.Reset();
  });
  DownloadAndForget(server.Url("/file"));
  log.WaitForLine(LogLevel::Debug, "NativeNetworkService",
                  HasSubstr("Nothing came of the request"));
  EXPECT_FALSE(fs::exists(CacheFolder()));
  isBroken = false;
  EXPECT_EQ(ReadFileBytes(Download(server.Url("/file"))), "whole");
}

TEST_F(CacheTest, KeepsTheFormerFileWhenTheTransferBreaks) {
  std::atomic<bool> isBroken{false};
  const TrustedServer server([&](const WireRequest&, WireConnection& connection) {
    if (isBroken) {
      connection.Reset();
    } else {
      connection.Respond(200, "first", kTagged);
    }
  });
  const std::string path = Download(server.Url("/file"));
  isBroken = true;
  DownloadAndForget(server.Url("/file"));
  log.WaitForLine(LogLevel::Debug, "NativeNetworkService",
                  HasSubstr("Nothing came of the request"));
  EXPECT_EQ(ReadFileBytes(path), "first");
}

TEST_F(CacheTest, ServesManyDownloadsAtOnce) {
  const TrustedServer server([&](const WireRequest& request, WireConnection& connection) {
    connection.Respond(200, "body of " + request.target, kTagged);
  });
  constexpr int kFiles = 40;
  std::vector<std::future<std::string>> paths;
  for (int i = 0; i < kFiles; ++i) {
    auto promise = std::make_shared<std::promise<std::string>>();
    paths.push_back(promise->get_future());
    manager->GetFileAsync(server.Url("/" + std::to_string(i)), "", [promise](const auto& result) {
      promise->set_value(result.GetValue()->ToUri());
    });
  }
  for (int i = 0; i < kFiles; ++i) {
    EXPECT_EQ(ReadFileBytes(paths[static_cast<std::size_t>(i)].get()),
              "body of /" + std::to_string(i));
  }
  EXPECT_THAT(Cached(), testing::SizeIs(kFiles));
}

// The development server, as an app's developer would run it.
class DevServerTest : public CacheTest {
 protected:
  DevServerTest() {
    EXPECT_TRUE(WaitUntil([this] {
      const std::string output = ReadFileBytes(folder_.PathOf("output"));
      return program_.HasEnded() || output.find("authority=") != std::string::npos;
    }));
    const std::string output = ReadFileBytes(folder_.PathOf("output"));
    url_ = output.substr(0, output.find('\n')).substr(std::string("url=").size());
    Platform::CurlUrlSessionOptions options;
    options.extraTrustFile = folder_.PathOf("ca/authority.pem");
    Platform::Host real = host.Copy();
    real.urlSession = std::make_shared<Platform::CurlUrlSession>(options);
    Platform::Host::Install(real);
    network = Velmora::CreateNativeNetworkService(systemInfo);
    manager = Velmora::CreateNativeRemoteFileManagerService(
        network, Velmora::CreateNativeFileSystemService(), systemInfo);
  }

  const TestSupport::TemporaryDirectory folder_;
  const std::string file_ = folder_.WriteFile("www/rules.json", "{\"version\": 1}");
  ChildProgram program_{{DEVSERVER_PROGRAM, folder_.PathOf("www"), "--collect",
                         folder_.WriteFile("collected", ""), "--authority", folder_.PathOf("ca")},
                        folder_.WriteFile("output", "")};
  std::string url_;
};

TEST_F(DevServerTest, ServesAFileThatIsDownloadedRevalidatedAndReplaced) {
  const std::string first = Download(url_ + "/rules.json");
  EXPECT_EQ(ReadFileBytes(first), "{\"version\": 1}");
  EXPECT_EQ(Download(url_ + "/rules.json"), first);
  folder_.WriteFile("www/rules.json", "{\"version\": 22}");
  const std::string second = Download(url_ + "/rules.json");
  EXPECT_NE(second, first);
  EXPECT_EQ(ReadFileBytes(second), "{\"version\": 22}");
}

TEST_F(DevServerTest, AnswersWithWhatTheQueryAsksFor) {
  EXPECT_EQ(Get(url_ + "/rules.json?status=503")->GetResponseCode(), 503);
  EXPECT_EQ(Get(url_ + "/rules.json?status=416")->GetResponseCode(), 416);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Get(url_ + "/rules.json?delay=300")->GetResponseCode(), 200);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
  EXPECT_EQ(Get(url_ + "/rules.json?fault=drip")->GetResponse(), "{\"version\": 1}");
  EXPECT_EQ(Get(url_ + "/none.json")->GetResponseCode(), 404);
  EXPECT_EQ(Get(url_ + "/%2e%2e/ca/authority.key")->GetResponseCode(), 404);
  EXPECT_THAT(TestSupport::Fetch(*Platform::Host::Current()->urlSession,
                                 url_ + "/rules.json?fault=truncate"),
              TestSupport::FailsWith(Platform::UrlFailure::ConnectionLost));
}

TEST_F(DevServerTest, AnswersConditionsAndRanges) {
  const auto whole = Get(url_ + "/rules.json");
  const std::string tag = whole->GetResponsePropertyValue("ETag");
  const std::string date = whole->GetResponsePropertyValue("Last-Modified");
  EXPECT_EQ(Get(url_ + "/rules.json", {{"If-None-Match", tag}})->GetResponseCode(), 304);
  EXPECT_EQ(Get(url_ + "/rules.json", {{"If-Modified-Since", date}})->GetResponseCode(), 304);
  EXPECT_EQ(Get(url_ + "/rules.json", {{"If-None-Match", "\"other\""}, {"If-Modified-Since", date}})
                ->GetResponseCode(),
            200);
  EXPECT_EQ(Get(url_ + "/rules.json", {{"Range", "bytes=1-3"}})->GetResponseCode(), 206);
  EXPECT_EQ(Get(url_ + "/rules.json", {{"Range", "bytes=999-"}})->GetResponseCode(), 416);
}

TEST_F(DevServerTest, CollectsWhatIsPosted) {
  using namespace std::chrono_literals;
  const auto connection = network->ConnectUrl(url_ + "/hits?a=b", Velmora::HttpCommandType::Post,
                                              "hit=\"1\"\n", {{"X-Shop", "shoes"}}, 30s, 30s);
  EXPECT_EQ(connection->GetResponseCode(), 200);
  const std::string line = ReadFileBytes(folder_.PathOf("collected"));
  EXPECT_THAT(line, HasSubstr(R"("body":"hit=\"1\"\n")"));
  EXPECT_THAT(line, HasSubstr(R"("path":"/hits")"));
  EXPECT_THAT(line, HasSubstr(R"("X-Shop":"shoes")"));
  EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
}

TEST_F(DevServerTest, KeepsItsAuthorityAndEndsInGoodOrder) {
  const std::string authority = ReadFileBytes(folder_.PathOf("ca/authority.pem"));
  program_.Signal(SIGTERM);
  EXPECT_EQ(program_.Wait(), 0);
  const std::string output = folder_.WriteFile("second", "");
  ChildProgram again(
      {DEVSERVER_PROGRAM, folder_.PathOf("www"), "--authority", folder_.PathOf("ca")}, output);
  EXPECT_TRUE(WaitUntil(
      [&output] { return ReadFileBytes(output).find("authority=") != std::string::npos; }));
  EXPECT_EQ(ReadFileBytes(folder_.PathOf("ca/authority.pem")), authority);
}

}  // namespace
