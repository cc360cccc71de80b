// The services against a server that others wrote.

#include <string>

#include <gmock/gmock.h>

#include "NetworkFixture.h"
#include "NginxServer.h"

namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using TestSupport::LogLevel;

class NginxTest : public NetworkFixture {
 protected:
  static const NginxServer& Server() {
    static const NginxServer server;
    return server;
  }
};

TEST_F(NginxTest, SpeaksHttp2AndHttp1) {
  const auto modern = Get(Server().Url("/hello.txt"));
  ASSERT_NE(modern, nullptr);
  EXPECT_EQ(modern->GetResponsePropertyValue("X-Protocol"), "HTTP/2.0");
  EXPECT_EQ(modern->GetResponse(), "hello\n");
  const auto old = Get(Server().OldUrl("/hello.txt"));
  ASSERT_NE(old, nullptr);
  EXPECT_EQ(old->GetResponsePropertyValue("X-Protocol"), "HTTP/1.1");
  EXPECT_EQ(old->GetResponse(), "hello\n");
}

TEST_F(NginxTest, FindsHeadersUnderTheirUsualNamesWhateverTheProtocol) {
  for (const std::string& url : {Server().Url("/hello.txt"), Server().OldUrl("/hello.txt")}) {
    const auto connection = Get(url);
    ASSERT_NE(connection, nullptr);
    EXPECT_THAT(connection->GetResponsePropertyValue("ETag"), testing::StartsWith("\""));
    EXPECT_THAT(connection->GetResponsePropertyValue("Last-Modified"), testing::EndsWith(" GMT"));
    EXPECT_EQ(connection->GetResponsePropertyValue("etag"), "");
  }
}

TEST_F(NginxTest, DeliversEveryStatus) {
  const std::pair<const char*, std::int32_t> pages[] = {
      {"/hello.txt", 200}, {"/none", 204}, {"/missing", 404}, {"/broken", 500}, {"/moved", 200}};
  for (const auto& [path, status] : pages) {
    for (const std::string& url : {Server().Url(path), Server().OldUrl(path)}) {
      const auto connection = Get(url);
      ASSERT_NE(connection, nullptr) << url;
      EXPECT_EQ(connection->GetResponseCode(), status) << url;
    }
  }
}

TEST_F(NginxTest, AsksForRanges) {
  const auto part = Get(Server().Url("/hello.txt"), {{"Range", "bytes=1-3"}});
  EXPECT_EQ(part->GetResponseCode(), 206);
  EXPECT_EQ(part->GetResponse(), "ell");
  EXPECT_EQ(Get(Server().Url("/hello.txt"), {{"Range", "bytes=1000-"}})->GetResponseCode(), 416);
}

TEST_F(NginxTest, DoesNotFollowIntoCleartext) {
  log.ExpectLine(LogLevel::Debug, "NativeNetworkService", HasSubstr("Nothing came of the request"));
  EXPECT_EQ(network->ConnectUrl(Server().Url("/cleartext"), Velmora::HttpCommandType::Get, "", {},
                                1s, 0s),
            nullptr);
}

TEST_F(NginxTest, UndoesGzip) {
  const std::string json(50'000, '7');
  Server().PutFile("seven.json", json);
  for (const std::string& url : {Server().Url("/seven.json"), Server().OldUrl("/seven.json")}) {
    const auto connection = Get(url);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(connection->GetResponsePropertyValue("Content-Encoding"), "gzip");
    EXPECT_TRUE(connection->GetResponse() == json);
  }
}

TEST_F(NginxTest, DownloadsAHundredMegabytes) {
  std::string body(100'000'000, 'h');
  body.back() = 'e';
  Server().PutFile("huge.txt", body);
  const auto connection = Get(Server().Url("/huge.txt"));
  ASSERT_NE(connection, nullptr);
  EXPECT_TRUE(connection->GetResponse() == body);
}

TEST_F(NginxTest, RefusesHeadersThatWouldBecomeSeveral) {
  log.ExpectLine(LogLevel::Debug, "NativeNetworkService",
                 HasSubstr("A header cannot be sent as it stands."));
  EXPECT_EQ(network->ConnectUrl(Server().Url("/hello.txt"), Velmora::HttpCommandType::Get, "",
                                {{"X", "a\r\nHost: elsewhere"}}, 1s, 0s),
            nullptr);
}

TEST_F(NginxTest, DownloadsOnceAndThenRevalidates) {
  Server().PutFile("rules.json", "{\"version\": 1}");
  const std::string url = Server().Url("/rules.json");
  const std::string first = Download(url);
  EXPECT_EQ(TestSupport::ReadFileBytes(first), "{\"version\": 1}");
  EXPECT_EQ(Download(url), first);
  EXPECT_EQ(TestSupport::ReadFileBytes(first), "{\"version\": 1}");
  Server().PutFile("rules.json", "{\"version\": 22}");
  const std::string second = Download(url);
  EXPECT_NE(second, first);
  EXPECT_EQ(TestSupport::ReadFileBytes(second), "{\"version\": 22}");
  EXPECT_EQ(host.fileManager->TypeOfItem(first), Platform::FileType::Missing);
}

}  // namespace
