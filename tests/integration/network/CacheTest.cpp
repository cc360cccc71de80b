// The download cache against servers that behave, and servers that do not.

#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "NetworkFixture.h"
#include "support/FileSizeLimit.h"
#include "support/Guarded.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using TestSupport::LogLevel;
using TestSupport::ReadFileBytes;
using TestSupport::TrustedServer;
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

TEST_F(CacheTest, LeavesNoPartOfAFileWhereTheDiskIsFull) {
  const TrustedServer server([](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, std::string(200'000, 'b'), kTagged);
  });
  {
    const TestSupport::FileSizeLimit full(100'000);
    log.ExpectLine(LogLevel::Error, "RemoteFileManager: ",
                   HasSubstr("Unable to write file to cache (Cannot write the file"));
    EXPECT_EQ(Download(server.Url("/file")), "");
  }
  EXPECT_THAT(Cached(), testing::IsEmpty());
  EXPECT_EQ(ReadFileBytes(Download(server.Url("/file"))).size(), 200'000U);
}

// Not even the superuser may make a folder there.
TEST_F(CacheTest, StoresNothingWhereNothingCanBeWritten) {
  host.fileManager->SetCachesDirectory("/proc/self/caches");
  const auto elsewhere = Velmora::CreateNativeRemoteFileManagerService(
      network, Velmora::CreateNativeFileSystemService(), systemInfo);
  const TrustedServer server([](const WireRequest&, WireConnection& connection) {
    connection.Respond(200, "body", kTagged);
  });
  log.ExpectLine(LogLevel::Error, "RemoteFileManager: ",
                 HasSubstr("Unable to create directory (Cannot create the directory"));
  const auto result = elsewhere->GetFileSync(server.Url("/file"), "");
  ASSERT_TRUE(result);
  EXPECT_EQ(result.GetValue()->ReadJsonStringFromFile(), "");
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

}  // namespace
