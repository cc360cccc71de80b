// What servers answer, and what the network service makes of it, over each server.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "CaseFixture.h"
#include "VelmoraCore/SdkError.h"

namespace {

using namespace std::chrono_literals;
using Platform::UrlFailure;
using testing::HasSubstr;
using TestSupport::Brings;
using TestSupport::FailsWith;
using TestSupport::LogLevel;
using Velmora::HttpCommandType;

constexpr const char* kTag = "NativeNetworkService";

class ServerCasesTest : public CaseFixture {
 protected:
  // Nobody is called back; a line for developers says why.
  void ExpectSilence(const std::string& url, const Headers& headers, const std::string& reason) {
    network->ConnectUrlAsync(url, HttpCommandType::Get, "", headers, 30s, 30s,
                             [](const auto&) { ADD_FAILURE() << "it was called back"; });
    log.WaitForLine(LogLevel::Debug, kTag, HasSubstr(reason));
  }
};
OVER_EVERY_SERVER(ServerCasesTest);

TEST_P(ServerCasesTest, SpeaksTheProtocolThatTheServerPrefers) {
  const auto connection = Get(Url("/none"));
  ASSERT_NE(connection, nullptr);
  const char* expected = "";
  if (GetParam() == &MakeNginx1Server) expected = "HTTP/1.1";
  if (GetParam() == &MakeNginx2Server) expected = "HTTP/2.0";
  EXPECT_EQ(connection->GetResponsePropertyValue("X-Protocol"), expected);
}

TEST_P(ServerCasesTest, DeliversEveryStatusAsAConnection) {
  const std::pair<const char*, std::int32_t> pages[] = {
      {"/hello.txt", 200}, {"/none", 204},     {"/moved", 200}, {"/unchanged", 304},
      {"/missing", 404},   {"/no-range", 416}, {"/broken", 500}};
  for (const auto& [path, status] : pages) {
    const auto connection = Get(Url(path));
    ASSERT_NE(connection, nullptr) << path;
    EXPECT_EQ(connection->GetResponseCode(), status) << path;
  }
}

TEST_P(ServerCasesTest, DeliversTheBodyOfAnErrorStatus) {
  const auto connection = Get(Url("/missing"));
  EXPECT_EQ(connection->GetResponseMessage(), "Not Found");
  EXPECT_NE(connection->GetResponse(), "");
  EXPECT_EQ(Get(Url("/no-range"))->GetResponse(), "no such range");
}

TEST_P(ServerCasesTest, FindsHeadersUnderTheirUsualNamesWhateverTheProtocol) {
  const auto connection = Get(Url("/hello.txt"));
  EXPECT_THAT(connection->GetResponsePropertyValue("ETag"), testing::StartsWith("\""));
  EXPECT_THAT(connection->GetResponsePropertyValue("Last-Modified"), testing::EndsWith(" GMT"));
  EXPECT_EQ(connection->GetResponsePropertyValue("etag"), "");
}

TEST_P(ServerCasesTest, AnswersConditionsAndRanges) {
  const std::string tag = Get(Url("/hello.txt"))->GetResponsePropertyValue("ETag");
  EXPECT_EQ(Get(Url("/hello.txt"), {{"If-None-Match", tag}})->GetResponseCode(), 304);
  EXPECT_EQ(Get(Url("/hello.txt"), {{"If-None-Match", "\"other\""}})->GetResponseCode(), 200);
  const auto part = Get(Url("/hello.txt"), {{"Range", "bytes=1-3"}});
  EXPECT_EQ(part->GetResponseCode(), 206);
  EXPECT_EQ(part->GetResponse(), "ell");
  EXPECT_EQ(Get(Url("/hello.txt"), {{"Range", "bytes=1000-"}})->GetResponseCode(), 416);
}

TEST_P(ServerCasesTest, FollowsToHttpsAndNotToHttp) {
  EXPECT_THAT(Fetch(Url("/moved")), Brings(200, "hello\n"));
  EXPECT_THAT(Fetch(Url("/cleartext")), FailsWith(UrlFailure::CleartextRefused));
}

TEST_P(ServerCasesTest, ReadsABodyWithoutALength) {
  EXPECT_THAT(Fetch(Url("/live/chunked")), Brings(200, "abcde"));
}

TEST_P(ServerCasesTest, UndoesGzip) {
  const std::string json(50'000, '7');
  Server().PutFile("seven.json", json);
  const auto connection = Get(Url("/seven.json"));
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->GetResponsePropertyValue("Content-Encoding"), "gzip");
  EXPECT_TRUE(connection->GetResponse() == json);
}

TEST_P(ServerCasesTest, DownloadsAHundredMegabytes) {
  std::string body(100'000'000, 'h');
  body.back() = 'e';
  Server().PutFile("huge.txt", body);
  const auto connection = Get(Url("/huge.txt"));
  Server().RemoveFile("huge.txt");
  ASSERT_NE(connection, nullptr);
  const auto data = connection->GetResponseRawData();
  std::vector<std::uint8_t> buffer(data->GetSize() + 1);
  EXPECT_EQ(data->GetData(buffer.size(), buffer.data()), body.size());
  EXPECT_TRUE(std::equal(body.begin(), body.end(), buffer.begin(), buffer.end() - 1));
}

TEST_P(ServerCasesTest, CopiesNoMoreOfTheBodyThanThereIsAndThanIsAskedFor) {
  const auto data = Get(Url("/hello.txt"))->GetResponseRawData();
  EXPECT_EQ(data->GetSize(), 6U);
  std::vector<std::uint8_t> buffer(10, 'x');
  EXPECT_EQ(data->GetData(10, buffer.data()), 6U);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "hello\nxxxx");
  EXPECT_EQ(data->GetData(2, buffer.data()), 2U);
  EXPECT_EQ(data->GetData(UINT64_MAX, buffer.data()), 6U);
}

TEST_P(ServerCasesTest, SendsTheBodyWithPostOnly) {
  const auto ask = [&](HttpCommandType command, const std::string& body) {
    const auto connection = network->ConnectUrl(Url("/live/echo"), command, body, {}, 30s, 30s);
    return connection ? connection->GetResponse() : "nothing came";
  };
  EXPECT_EQ(ask(HttpCommandType::Post, "payload"), "POST payload");
  EXPECT_EQ(ask(HttpCommandType::Post, ""), "POST ");
  EXPECT_EQ(ask(HttpCommandType::Get, "payload"), "GET ");
}

TEST_P(ServerCasesTest, ShowsItselfAsTheDeviceUnlessTheCallerSaysOtherwise) {
  EXPECT_EQ(Get(Url("/agent"))->GetResponse(), systemInfo->GetDefaultUserAgent());
  EXPECT_EQ(Get(Url("/agent"), {{"User-Agent", "mine"}})->GetResponse(), "mine");
}

TEST_P(ServerCasesTest, RefusesHeadersThatWouldBecomeSeveral) {
  const Headers injections[] = {
      {{"X", "a\r\nHost: elsewhere"}}, {{"X", "a\nb"}}, {{"X\r\nY", "a"}}};
  for (const Headers& injection : injections) {
    ExpectSilence(Url("/hello.txt"), injection, "A header cannot be sent as it stands.");
  }
}

TEST_P(ServerCasesTest, RefusesAPlainHttpUrlBeforeItAsks) {
  std::string url = Url("/hello.txt");
  url.erase(4, 1);  // the "s"
  try {
    network->ConnectUrl(url, HttpCommandType::Get, "", {}, 1s, 1s);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const Velmora::SdkError& error) {
    EXPECT_EQ(error.GetCode(), "std.logic_error.invalid_argument");
    EXPECT_EQ(error.GetMessage(), "Invalid url");
  }
  ExpectSilence(url + "?https", {}, "Only https is allowed.");
}

TEST_P(ServerCasesTest, ReturnsAtOnceWithBothTimeoutsZero) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(network->ConnectUrl(Url("/live/hang"), HttpCommandType::Get, "", {}, 0s, 0s), nullptr);
  EXPECT_LT(std::chrono::steady_clock::now() - start, TestSupport::kDefaultDeadline);
  // It goes on, and is cancelled with the session.
  log.AllowLines(LogLevel::Debug, kTag, HasSubstr("Nothing came of the request"));
}

}  // namespace
