#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "services/system/NativeUrlService.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace {

using TestSupport::FakeHost;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using Velmora::CreateNativeUrlService;

constexpr const char* kTag = "NativeUrlService";

void ExpectOneLineEach(LogCapture& log, const std::string& shownUrl) {
  const std::string start = "Provided URL (" + shownUrl + ") is invalid, couldn't extract ";
  log.ExpectLine(LogLevel::Debug, kTag, start + "query params");
  log.ExpectLine(LogLevel::Debug, kTag, start + "url path");
  log.ExpectLine(LogLevel::Debug, kTag, start + "scheme");
  log.ExpectLine(LogLevel::Debug, kTag, start + "host");
}

void ExpectNothingFrom(const std::string& url) {
  const auto service = CreateNativeUrlService();
  EXPECT_EQ(service->GetQuery(url), "");
  EXPECT_EQ(service->GetPath(url), "");
  EXPECT_EQ(service->GetScheme(url), "");
  EXPECT_EQ(service->GetHost(url), "");
}

TEST(NativeUrlService, GivesTheComponentsOfAUrl) {
  const FakeHost host;
  const LogCapture log;
  const auto service = CreateNativeUrlService();
  const std::string url = "https://h/a/b?x=1";
  EXPECT_EQ(service->GetScheme(url), "https");
  EXPECT_EQ(service->GetHost(url), "h");
  EXPECT_EQ(service->GetPath(url), "/a/b");
  EXPECT_EQ(service->GetQuery(url), "x=1");
}

TEST(NativeUrlService, GivesNothingForAMissingComponentWithoutALogLine) {
  const FakeHost host;
  const LogCapture log;
  const auto service = CreateNativeUrlService();
  EXPECT_EQ(service->GetQuery("https://h/a/b"), "");
  EXPECT_EQ(service->GetPath("https://h"), "");
  EXPECT_EQ(service->GetScheme("/a/b?x=1"), "");
  EXPECT_EQ(service->GetHost("mailto:someone"), "");
}

TEST(NativeUrlService, LeavesPercentEncodingAsItIs) {
  const FakeHost host;
  const LogCapture log;
  const auto service = CreateNativeUrlService();
  EXPECT_EQ(service->GetPath("https://h/a%20b"), "/a%20b");
  EXPECT_EQ(service->GetQuery("https://h/?x=%C3%A4&y=1%3F"), "x=%C3%A4&y=1%3F");
}

TEST(NativeUrlService, LogsOneDebugLineForAnInvalidUrl) {
  const FakeHost host;
  LogCapture log;
  ExpectOneLineEach(log, "https://h/a b");
  ExpectNothingFrom("https://h/a b");
}

TEST(NativeUrlService, LogsOneDebugLineForAnEmptyUrl) {
  const FakeHost host;
  LogCapture log;
  ExpectOneLineEach(log, "");
  ExpectNothingFrom("");
}

TEST(NativeUrlService, LogsOneDebugLineForAUrlThatIsNoUtf8) {
  const FakeHost host;
  LogCapture log;
  ExpectOneLineEach(log, "https://h/\xFF");
  ExpectNothingFrom("https://h/\xFF");
}

TEST(NativeUrlService, LogsPlaceholdersOfAnInvalidUrlAsTheyStand) {
  const FakeHost host;
  LogCapture log;
  ExpectOneLineEach(log, "https://h/%s%n");
  ExpectNothingFrom("https://h/%s%n");
}

TEST(NativeUrlService, ReadsAUrlUpToItsFirstZeroByte) {
  const FakeHost host;
  const LogCapture log;
  const auto service = CreateNativeUrlService();
  EXPECT_EQ(service->GetPath(std::string("https://h/a\0 b", 14)), "/a");
}

TEST(NativeUrlService, TakesApartAUrlOfTenMegabytes) {
  const FakeHost host;
  const LogCapture log;
  const std::string query(10'000'000, 'q');
  EXPECT_EQ(CreateNativeUrlService()->GetQuery("https://h/?" + query), query);
}

TEST(NativeUrlService, TreatsAFailingParserLikeAnInvalidUrl) {
  const FakeHost host;
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  LogCapture log;
  ExpectOneLineEach(log, "https://h/");
  ExpectNothingFrom("https://h/");
}

TEST(NativeUrlService, ServesSeveralThreadsAtOnce) {
  const FakeHost host;
  const LogCapture log;
  const auto service = CreateNativeUrlService();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&service, i] {
      const std::string query = "x=" + std::to_string(i);
      for (int j = 0; j < 200; ++j) EXPECT_EQ(service->GetQuery("https://h/?" + query), query);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
