// The download cache over each server.

#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "CaseFixture.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::StartsWith;
using TestSupport::LogLevel;
using TestSupport::ReadFileBytes;

constexpr const char* kTag = "RemoteFileManager: ";
constexpr const char* kNetworkTag = "NativeNetworkService";

class ServerCacheTest : public CaseFixture {
 protected:
  // Downloads it, and downloads it again: what the server was asked with the second time, which is
  // what it answered.
  std::string AskedAgain(const std::string& path) {
    Download(Url(path));
    return ReadFileBytes(Download(Url(path)));
  }

  std::size_t CountCached() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(CacheFolder()), fs::directory_iterator()));
  }

  // A download that comes to nothing: the callback is not called, and a line is logged.
  void DownloadInVain(const std::string& path) {
    manager->GetFileAsync(Url(path), "",
                          [](const auto&) { ADD_FAILURE() << "it was called back"; });
    log.WaitForLine(LogLevel::Debug, kNetworkTag, HasSubstr("Nothing came of the request"));
  }
};
OVER_EVERY_SERVER(ServerCacheTest);

TEST_P(ServerCacheTest, DownloadsOnceRevalidatesAndReplaces) {
  Server().PutFile("rules.txt", "version 1");
  const std::string first = Download(Url("/rules.txt"));
  EXPECT_EQ(ReadFileBytes(first), "version 1");
  const auto written = fs::last_write_time(first);
  EXPECT_EQ(Download(Url("/rules.txt")), first);
  EXPECT_EQ(fs::last_write_time(first), written);
  Server().PutFile("rules.txt", "version 22");
  const std::string second = Download(Url("/rules.txt"));
  EXPECT_NE(second, first);
  EXPECT_EQ(ReadFileBytes(second), "version 22");
  EXPECT_FALSE(fs::exists(first));
}

TEST_P(ServerCacheTest, GivesA304WithoutACachedFileAsAnError) {
  EXPECT_EQ(Download(Url("/unchanged")), "remotefilemanager.request_failed: 304");
  EXPECT_FALSE(fs::exists(CacheFolder()));
}

TEST_P(ServerCacheTest, GivesA404AsAnErrorEvenWithACachedFile) {
  Server().PutFile("fleeting.txt", "soon gone");
  const std::string path = Download(Url("/fleeting.txt"));
  EXPECT_EQ(ReadFileBytes(path), "soon gone");
  Server().RemoveFile("fleeting.txt");
  EXPECT_EQ(Download(Url("/fleeting.txt")), "remotefilemanager.request_failed: 404");
  EXPECT_EQ(ReadFileBytes(path), "soon gone");
  EXPECT_TRUE(manager->GetFileFromCache(Url("/fleeting.txt"), ""));
}

TEST_P(ServerCacheTest, StoresA416LikeA200) {
  log.ExpectLine(LogLevel::Debug, kTag, StartsWith("Server did not return Last-Modified"));
  log.ExpectLine(LogLevel::Debug, kTag, StartsWith("Server did not return ETag"));
  const std::string path = Download(Url("/no-range"));
  EXPECT_EQ(ReadFileBytes(path), "no such range");
  EXPECT_THAT(path, testing::EndsWith("=.0_"));
}

TEST_P(ServerCacheTest, GivesAnErrorForOtherStatuses) {
  EXPECT_EQ(Download(Url("/broken")), "remotefilemanager.request_failed: 500");
  EXPECT_EQ(Download(Url("/none")), "remotefilemanager.request_failed: 204");
}

TEST_P(ServerCacheTest, AsksAgainWithTagAndDate) {
  EXPECT_EQ(AskedAgain("/tagged"), "since Tue, 05 Mar 2024 10:20:30 GMT match W/\"a b\"");
}

TEST_P(ServerCacheTest, AsksAgainWithTheDateAloneWhereThereWasNoTag) {
  log.AllowLines(LogLevel::Debug, kTag, StartsWith("Server did not return ETag"));
  log.ExpectLine(LogLevel::Warning, kTag, "Invalid Extension on Cache File (1709634030_)");
  EXPECT_EQ(AskedAgain("/dated"), "since Tue, 05 Mar 2024 10:20:30 GMT match ");
}

TEST_P(ServerCacheTest, AsksAgainFromTheStartOf1970WhereThereWasNeither) {
  log.AllowLines(LogLevel::Debug, kTag, StartsWith("Server did not return "));
  log.ExpectLine(LogLevel::Warning, kTag, "Invalid Extension on Cache File (0_)");
  EXPECT_EQ(AskedAgain("/bare"), "since Thu, 01 Jan 1970 00:00:00 GMT match ");
}

TEST_P(ServerCacheTest, TellsUrlsApartThatDifferInCaseOnly) {
  Server().PutFile("case.txt", "lower");
  Server().PutFile("CASE.txt", "upper");
  const std::string lower = Download(Url("/case.txt"));
  const std::string upper = Download(Url("/CASE.txt"));
  EXPECT_EQ(ReadFileBytes(lower), "lower");
  EXPECT_EQ(ReadFileBytes(upper), "upper");
}

TEST_P(ServerCacheTest, NeverTakesABodyThatWasCutForAFile) {
  DownloadInVain("/live/truncated");
  DownloadInVain("/live/torn");
  EXPECT_FALSE(fs::exists(CacheFolder()));
}

TEST_P(ServerCacheTest, CallsBackWithWhatWasDownloaded) {
  auto promise = std::make_shared<std::promise<std::string>>();
  auto path = promise->get_future();
  manager->GetFileAsync(Url("/hello.txt"), "sub", [promise](const auto& result) {
    promise->set_value(result.GetValue()->ToUri());
  });
  EXPECT_EQ(ReadFileBytes(path.get()), "hello\n");
}

TEST_P(ServerCacheTest, DeletesAllButTheListed) {
  const std::string folder = CacheFolder();
  log.ExpectLine(LogLevel::Debug, kTag, "Nothing to be removed in cache folder " + folder);
  manager->DeleteCachedDataNotInList("", {});
  const std::string kept = Download(Url("/hello.txt"));
  Server().PutFile("second.txt", "second");
  const std::string deleted = Download(Url("/second.txt"));
  manager->DeleteCachedDataNotInList("", {Url("/hello.txt")});
  EXPECT_TRUE(fs::exists(kept));
  EXPECT_FALSE(fs::exists(deleted));
  manager->DeleteCachedDataNotInList("", {});
  EXPECT_EQ(CountCached(), 0U);
  log.ExpectLine(LogLevel::Debug, kTag, "Nothing to be removed in cache folder " + folder);
  manager->DeleteCachedDataNotInList("", {Url("/hello.txt")});
}

}  // namespace
