#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "services/network/HttpConnection.h"
#include "services/network/HttpConnectionData.h"
#include "services/network/HttpReasonPhrase.h"

namespace {

using Velmora::HttpConnection;

std::shared_ptr<HttpConnection> ConnectionWith(Platform::UrlResponse response) {
  return std::make_shared<HttpConnection>(
      std::make_shared<const Platform::UrlResponse>(std::move(response)));
}

std::shared_ptr<HttpConnection> ConnectionWithBody(const std::string& body) {
  return ConnectionWith({.statusCode = 200, .headers = {}, .body = body});
}

TEST(HttpConnection, GivesTheBodyAsText) {
  EXPECT_EQ(ConnectionWithBody("héllo")->GetResponse(), "héllo");
  EXPECT_EQ(ConnectionWithBody(std::string("a\0b", 3))->GetResponse(), std::string("a\0b", 3));
  EXPECT_EQ(ConnectionWithBody("")->GetResponse(), "");
}

TEST(HttpConnection, GivesNoTextForABodyThatIsNotUtf8) {
  const auto connection = ConnectionWithBody("hi \xff");
  EXPECT_EQ(connection->GetResponse(), "");
  EXPECT_EQ(connection->GetResponseRawData()->GetSize(), 4U);
}

TEST(HttpConnection, GivesTheStatusAndItsPhrase) {
  const auto connection = ConnectionWith({.statusCode = 404, .headers = {}, .body = ""});
  EXPECT_EQ(connection->GetResponseCode(), 404);
  EXPECT_EQ(connection->GetResponseMessage(), "Not Found");
}

class OtherStatus final : public HttpConnection {
 public:
  OtherStatus() : HttpConnection(nullptr) {}
  std::int32_t GetResponseCode() override { return 304; }
};

TEST(HttpConnection, AsksTheInterfaceForTheStatusThatItPhrases) {
  EXPECT_EQ(std::make_shared<OtherStatus>()->GetResponseMessage(), "Not Modified");
}

TEST(HttpConnection, FindsAHeaderByExactlyItsName) {
  const auto connection =
      ConnectionWith({.statusCode = 200, .headers = {{"ETag", "\"v1\""}}, .body = ""});
  EXPECT_EQ(connection->GetResponsePropertyValue("ETag"), "\"v1\"");
  EXPECT_EQ(connection->GetResponsePropertyValue("etag"), "");
  EXPECT_EQ(connection->GetResponsePropertyValue("Last-Modified"), "");
  EXPECT_EQ(connection->GetResponsePropertyValue(""), "");
}

TEST(HttpConnection, KeepsItsBodyWhenItIsClosed) {
  const auto connection = ConnectionWithBody("still here");
  connection->Close();
  connection->Close();
  EXPECT_EQ(connection->GetResponse(), "still here");
}

TEST(HttpConnection, IsEmptyWithoutAResponse) {
  const auto connection = std::make_shared<HttpConnection>(nullptr);
  EXPECT_EQ(connection->GetResponse(), "");
  EXPECT_EQ(connection->GetResponseCode(), 0);
  EXPECT_EQ(connection->GetResponseMessage(), "");
  EXPECT_EQ(connection->GetResponsePropertyValue("ETag"), "");
  EXPECT_EQ(connection->GetResponseRawData()->GetSize(), 0U);
  std::uint8_t byte = 7;
  EXPECT_EQ(connection->GetResponseRawData()->GetData(1, &byte), 0U);
  EXPECT_EQ(byte, 7);
}

TEST(HttpConnectionData, CopiesTheWholeBodyWhenTheMaximumIsLarger) {
  const auto data = ConnectionWithBody("12345")->GetResponseRawData();
  std::vector<std::uint8_t> buffer(8, 'x');
  EXPECT_EQ(data->GetData(8, buffer.data()), 5U);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "12345xxx");
}

TEST(HttpConnectionData, CopiesNoMoreThanTheMaximum) {
  const auto data = ConnectionWithBody("12345")->GetResponseRawData();
  std::vector<std::uint8_t> buffer(8, 'x');
  EXPECT_EQ(data->GetData(2, buffer.data()), 2U);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "12xxxxxx");
  EXPECT_EQ(data->GetData(0, nullptr), 0U);
}

TEST(HttpConnectionData, OutlivesTheConnection) {
  auto connection = ConnectionWithBody(std::string(10'000'000, 'b'));
  const auto data = connection->GetResponseRawData();
  EXPECT_NE(data, connection->GetResponseRawData());
  connection.reset();
  std::vector<std::uint8_t> buffer(data->GetSize());
  EXPECT_EQ(data->GetData(buffer.size(), buffer.data()), 10'000'000U);
  EXPECT_EQ(buffer.back(), 'b');
}

TEST(HttpReasonPhrase, KnowsTheStandardOnes) {
  EXPECT_EQ(Velmora::HttpReasonPhrase(200), "OK");
  EXPECT_EQ(Velmora::HttpReasonPhrase(204), "No Content");
  EXPECT_EQ(Velmora::HttpReasonPhrase(416), "Range Not Satisfiable");
  EXPECT_EQ(Velmora::HttpReasonPhrase(500), "Internal Server Error");
}

TEST(HttpReasonPhrase, FallsBackOnTheClass) {
  EXPECT_EQ(Velmora::HttpReasonPhrase(299), "Success");
  EXPECT_EQ(Velmora::HttpReasonPhrase(499), "Client Error");
  for (const std::int32_t code : {0, 99, 600, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(Velmora::HttpReasonPhrase(code), "") << code;
  }
}

}  // namespace
