#include <string>

#include <gmock/gmock.h>

#include "platform/linux/ResponseHeaders.h"
#include "platform/linux/UrlRequestRules.h"

namespace {

using Platform::ResponseHeaders;
using Platform::UsualHeaderName;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

ResponseHeaders Gathered(std::initializer_list<std::string> lines) {
  ResponseHeaders headers;
  for (const std::string& line : lines) EXPECT_TRUE(headers.Add(line));
  return headers;
}

TEST(ResponseHeaders, GathersNamesAndValues) {
  EXPECT_THAT(
      Gathered({"HTTP/1.1 200 OK\r\n", "ETag: \"a:b\"\r\n", "X-Empty:\r\n",
                "last-modified:\tTue, 05 Mar 2024 10:20:30 GMT \r\n", "\r\n"})
          .All(),
      ElementsAre(Pair("ETag", "\"a:b\""), Pair("Last-Modified", "Tue, 05 Mar 2024 10:20:30 GMT"),
                  Pair("X-Empty", "")));
}

TEST(ResponseHeaders, JoinsRepeatedOnes) {
  EXPECT_THAT(Gathered({"HTTP/2 200\r\n", "via: a\r\n", "Via: b\r\n", "\r\n"}).All(),
              ElementsAre(Pair("Via", "a, b")));
}

TEST(ResponseHeaders, GoesOnWithFoldedLines) {
  EXPECT_THAT(
      Gathered({"HTTP/1.1 200 OK\r\n", " lost\r\n", "X: a\r\n", "  b\r\n", "\tc\r\n"}).All(),
      ElementsAre(Pair("X", "a b c")));
}

TEST(ResponseHeaders, BeginsAnewWithTheNextResponse) {
  EXPECT_THAT(Gathered({"HTTP/1.1 301 Moved\r\n", "X: first\r\n", "\r\n", "HTTP/1.1 200 OK\r\n",
                        "Y: second\r\n", "\r\n"})
                  .All(),
              ElementsAre(Pair("Y", "second")));
}

TEST(ResponseHeaders, LeavesOutTrailers) {
  EXPECT_THAT(Gathered({"HTTP/1.1 200 OK\r\n", "X: 1\r\n", "\r\n", "X: 2\r\n", "Z: 3\r\n"}).All(),
              ElementsAre(Pair("X", "1")));
}

TEST(ResponseHeaders, SkipsWhatIsNoHeader) {
  EXPECT_THAT(Gathered({"HTTP/1.1 200 OK\r\n", "no colon\r\n", ": no name\r\n", " \r\n"}).All(),
              IsEmpty());
}

TEST(ResponseHeaders, KeepsBytesAsTheyCame) {
  EXPECT_THAT(Gathered({"HTTP/1.1 200 OK\r\n", "ETag: \xe9\x01\r\n"}).All(),
              ElementsAre(Pair("ETag", "\xe9\x01")));
}

TEST(ResponseHeaders, RefusesMoreThanItsBound) {
  ResponseHeaders headers;
  EXPECT_TRUE(headers.Add("HTTP/1.1 200 OK\r\n"));
  const std::string line = "X: " + std::string(1000, 'x') + "\r\n";
  bool wasTaken = true;
  for (int i = 0; i < 300 && wasTaken; ++i) wasTaken = headers.Add(line);
  EXPECT_FALSE(wasTaken);
  EXPECT_TRUE(headers.Add("HTTP/1.1 200 OK\r\n"));
  EXPECT_FALSE(headers.Add(std::string(10'000'000, 'h')));
}

TEST(UsualHeaderName, SpellsNamesAsUsual) {
  EXPECT_EQ(UsualHeaderName("etag"), "ETag");
  EXPECT_EQ(UsualHeaderName("ETAG"), "ETag");
  EXPECT_EQ(UsualHeaderName("last-modified"), "Last-Modified");
  EXPECT_EQ(UsualHeaderName("www-authenticate"), "WWW-Authenticate");
  EXPECT_EQ(UsualHeaderName("x-request-id"), "X-Request-Id");
  EXPECT_EQ(UsualHeaderName("Content-LENGTH"), "Content-Length");
  EXPECT_EQ(UsualHeaderName("x--y-"), "X--Y-");
  EXPECT_EQ(UsualHeaderName(""), "");
}

}  // namespace
