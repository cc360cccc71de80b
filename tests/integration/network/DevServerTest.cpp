// The development server, as an app's developer would run it.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <curl/curl.h>
#include <gmock/gmock.h>

#include "ChildProgram.h"
#include "NetworkFixture.h"
#include "support/ScopedEnvironment.h"
#include "support/UrlSessionCalls.h"
#include "support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using TestSupport::FailsWith;
using TestSupport::ReadFileBytes;
using TestSupport::WaitUntil;

class DevServerTest : public NetworkFixture {
 protected:
  DevServerTest() {
    url_ = Announced(program_, folder_.PathOf("output"), "url=");
    Platform::CurlUrlSessionOptions options;
    options.extraTrustFile = folder_.PathOf("ca/authority.pem");
    Platform::Host real = host.Copy();
    real.urlSession = std::make_shared<Platform::CurlUrlSession>(options);
    Platform::Host::Install(real);
    network = Velmora::CreateNativeNetworkService(systemInfo);
    manager = Velmora::CreateNativeRemoteFileManagerService(
        network, Velmora::CreateNativeFileSystemService(), systemInfo);
  }

  // What the server says behind this word when it has started.
  static std::string Announced(ChildProgram& program, const std::string& output,
                               const std::string& word) {
    EXPECT_TRUE(WaitUntil([&] {
      return program.HasEnded() || ReadFileBytes(output).find("authority=") != std::string::npos;
    }));
    const std::string text = ReadFileBytes(output);
    const std::size_t start = text.find(word) + word.size();
    return text.substr(start, text.find('\n', start) - start);
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
              FailsWith(Platform::UrlFailure::ConnectionLost));
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

TEST_F(DevServerTest, PacksWhatItSendsAsTheClientTakesIt) {
  const auto codingFor = [this](const Headers& headers) {
    const auto connection = Get(url_ + "/rules.json", headers);
    EXPECT_EQ(connection->GetResponse(), "{\"version\": 1}");
    return connection->GetResponsePropertyValue("Content-Encoding");
  };
  EXPECT_EQ(codingFor({}), "br");
  EXPECT_EQ(codingFor({{"Accept-Encoding", "gzip"}}), "gzip");
  EXPECT_EQ(codingFor({{"Accept-Encoding", "identity"}}), "");
}

TEST_F(DevServerTest, AnswersAPostWithTheTroubleItAsksFor) {
  using namespace std::chrono_literals;
  const auto connection = network->ConnectUrl(url_ + "/hits?status=500",
                                              Velmora::HttpCommandType::Post, "hit", {}, 30s, 30s);
  EXPECT_EQ(connection->GetResponseCode(), 500);
  EXPECT_THAT(ReadFileBytes(folder_.PathOf("collected")), HasSubstr(R"("body":"hit")"));
}

TEST_F(DevServerTest, HangsAsLongAsItRuns) {
  Platform::UrlRequest request = TestSupport::RequestFor(url_ + "/rules.json?fault=hang");
  request.idleTimeout = std::chrono::seconds(1);
  Platform::UrlSession& urls = *Platform::Host::Current()->urlSession;
  EXPECT_THAT(TestSupport::Fetch(urls, request), FailsWith(Platform::UrlFailure::TimedOut));
  request.idleTimeout = std::chrono::seconds(60);
  TestSupport::PendingUrl hanging(urls, request);
  EXPECT_EQ(Get(url_ + "/rules.json")->GetResponseCode(), 200);
  EXPECT_FALSE(hanging.IsOver());
  program_.Signal(SIGTERM);
  EXPECT_EQ(program_.Wait(), 0);
  hanging.Wait();
}

TEST_F(DevServerTest, KeepsItsAuthorityInTheUsersCacheUnlessItIsToldWhere) {
  const TestSupport::ScopedEnvironment home("HOME", folder_.PathOf("home"));
  const std::pair<std::optional<std::string>, std::string> caches[] = {
      {folder_.PathOf("cache"), folder_.PathOf("cache/qexcore-devserver")},
      {std::nullopt, folder_.PathOf("home/.cache/qexcore-devserver")}};
  for (const auto& [variable, folder] : caches) {
    const TestSupport::ScopedEnvironment cache("XDG_CACHE_HOME", variable);
    const std::string output = folder_.WriteFile("default", "");
    ChildProgram other({DEVSERVER_PROGRAM, folder_.PathOf("www")}, output);
    EXPECT_EQ(Announced(other, output, "authority="), folder + "/authority.pem");
    EXPECT_EQ(fs::status(folder + "/authority.key").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
  }
}

// What libcurl says of a client that knows nothing newer than TLS 1.2.
CURLcode AskWithOldTls(const std::string& url, const std::string& authority) {
  CURL* handle = ::curl_easy_init();
  ::curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  ::curl_easy_setopt(handle, CURLOPT_CAINFO, authority.c_str());
  ::curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  ::curl_easy_setopt(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_MAX_TLSv1_2));
  const CURLcode result = ::curl_easy_perform(handle);
  ::curl_easy_cleanup(handle);
  return result;
}

TEST_F(DevServerTest, SpeaksNoOlderTlsWhereItIsToldSo) {
  const std::string authority = folder_.PathOf("ca/authority.pem");
  EXPECT_EQ(AskWithOldTls(url_ + "/rules.json", authority), CURLE_OK);
  const std::string output = folder_.WriteFile("newest", "");
  ChildProgram newest(
      {DEVSERVER_PROGRAM, folder_.PathOf("www"), "--tls13", "--authority", folder_.PathOf("ca")},
      output);
  const std::string url = Announced(newest, output, "url=") + "/rules.json";
  EXPECT_EQ(AskWithOldTls(url, authority), CURLE_SSL_CONNECT_ERROR);
  EXPECT_EQ(Get(url)->GetResponseCode(), 200);
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
