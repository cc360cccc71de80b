#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "RemoteFileFixture.h"
#include "VelmoraCore/SdkError.h"
#include "services/network/NativeRemoteFile.h"
#include "support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

using namespace std::chrono_literals;
using Platform::UrlRequest;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::FakeUrlSession;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::CreateNativeRemoteFileManagerService;

class NativeRemoteFileManagerServiceTest : public RemoteFileFixture {
 protected:
  std::future<std::string> GetAsync(const std::string& url = kUrl) {
    auto promise = std::make_shared<std::promise<std::string>>();
    manager->GetFileAsync(
        url, "", [promise](const FileResult& result) { promise->set_value(TextOf(result)); });
    return promise->get_future();
  }

  // The callback has gone, or will, without having been called.
  static void ExpectNeverCalled(std::future<std::string>& result) {
    ASSERT_EQ(result.wait_for(TestSupport::kDefaultDeadline), std::future_status::ready);
    EXPECT_THROW(result.get(), std::future_error);
  }
};

template <class Make>
std::string MissingService(Make make) {
  try {
    make();
  } catch (const Velmora::SdkError& error) {
    return error.GetCode() + ": " + error.GetMessage();
  }
  return "nothing was thrown";
}

TEST_F(NativeRemoteFileManagerServiceTest, NamesTheServiceThatIsMissing) {
  EXPECT_EQ(
      MissingService([&] { CreateNativeRemoteFileManagerService(nullptr, nullptr, nullptr); }),
      "platform_services.missing_service: Network Service");
  EXPECT_EQ(
      MissingService([&] { CreateNativeRemoteFileManagerService(network, nullptr, systemInfo); }),
      "platform_services.missing_service: FileSystem Service");
  EXPECT_EQ(
      MissingService([&] { CreateNativeRemoteFileManagerService(network, fileSystem, nullptr); }),
      "platform_services.missing_service: SystemInfo Service");
}

TEST_F(NativeRemoteFileManagerServiceTest, AsksForEveryFileWithHalfAMinuteEach) {
  AnswerWith(404);
  Get();
  const UrlRequest request = host.urlSession->Requests().back();
  EXPECT_EQ(request.idleTimeout, 30s);
  EXPECT_EQ(request.wholeTimeout, 30s);
  EXPECT_EQ(request.method, "GET");
  EXPECT_EQ(request.url, kUrl);
  EXPECT_EQ(request.headers.front().name, "User-Agent");
}

TEST_F(NativeRemoteFileManagerServiceTest, ThrowsForWhatIsNoUrl) {
  for (const std::string url : {"", "rules.zip", "https://a b/"}) {
    try {
      static_cast<void>(manager->GetFileSync(url, ""));
      ADD_FAILURE() << "nothing was thrown for " << url;
    } catch (const Velmora::SdkError& error) {
      EXPECT_EQ(error.GetCode(), "std.logic_error.invalid_argument");
      EXPECT_EQ(error.GetMessage(), "Invalid url");
      EXPECT_EQ(error.GetDebugInfo().GetSourceLocation(),
                "src/services/network/NativeRemoteFileManagerService");
    }
  }
  EXPECT_THAT(host.urlSession->Requests(), IsEmpty());
}

TEST_F(NativeRemoteFileManagerServiceTest, LetsTheNetworkServicesRefusalPass) {
  EXPECT_THROW(static_cast<void>(manager->GetFileSync("http://example.com/", "")),
               Velmora::SdkError);
}

TEST_F(NativeRemoteFileManagerServiceTest, NeverCallsBackForWhatIsNoUrl) {
  AnswerWith(404);
  std::future<std::string> first = GetAsync("no url");
  log.WaitForLine(LogLevel::Error, "TaskExecutor", HasSubstr("Invalid url"));
  EXPECT_EQ(GetAsync().get(), "remotefilemanager.request_failed: 404");
  ExpectNeverCalled(first);
}

TEST_F(NativeRemoteFileManagerServiceTest, CallsBackWithTheDownloadedFile) {
  AnswerWith(200, "body", {{"Last-Modified", kDate}, {"ETag", "\"1\""}});
  const std::string path = GetAsync().get();
  EXPECT_EQ(path, CacheFolder() + "/" + kDigest + ".1709634030_223122");
  EXPECT_EQ(TestSupport::ReadFileBytes(path), "body");
}

TEST_F(NativeRemoteFileManagerServiceTest, CallsBackWithTheErrorOfAStatus) {
  AnswerWith(404);
  EXPECT_EQ(GetAsync().get(), "remotefilemanager.request_failed: 404");
  AnswerWith(304);
  EXPECT_EQ(GetAsync().get(), "remotefilemanager.request_failed: 304");
}

TEST_F(NativeRemoteFileManagerServiceTest, NeverCallsBackWhenTheTransportFails) {
  Plant(std::string(kDigest) + ".0_41");
  std::future<std::string> failing = GetAsync();
  log.WaitForLine(LogLevel::Debug, "NativeNetworkService", HasSubstr("Nothing came of"));
  AnswerWith(404);
  EXPECT_EQ(GetAsync().get(), "remotefilemanager.request_failed: 404");
  ExpectNeverCalled(failing);
}

TEST_F(NativeRemoteFileManagerServiceTest, DoesWithoutACallback) {
  AnswerWith(200, "body", {{"Last-Modified", kDate}, {"ETag", "\"1\""}});
  manager->GetFileAsync(kUrl, "", nullptr);
  EXPECT_TRUE(WaitUntil([this] { return Cached().size() == 1; }));
}

TEST_F(NativeRemoteFileManagerServiceTest, NamesItsThread) {
  EXPECT_TRUE(WaitUntil([this] {
    const auto names = host.processInfo->ThreadNames();
    return !names.empty() && names.front().second == "NativeRemoteFil";
  }));
}

// Answers nothing, but takes note of what is asked, and when.
class CountingNetwork final : public Velmora::Object,
                              public virtual Velmora::NetworkServiceInterface {
 public:
  std::shared_ptr<Velmora::HttpConnectionInterface> ConnectUrl(
      const std::string&, Velmora::HttpCommandType, const std::string&,
      const std::map<std::string, std::string>&, std::chrono::seconds connectTimeout,
      std::chrono::seconds readTimeout) override {
    timeouts = connectTimeout + readTimeout;
    return nullptr;
  }
  void ConnectUrlAsync(const std::string&, Velmora::HttpCommandType, const std::string&,
                       const std::map<std::string, std::string>&, std::chrono::seconds,
                       std::chrono::seconds, ConnectionCallback) override {
    started.set_value();
    release.get_future().wait();
  }

  std::chrono::seconds timeouts{0};
  std::promise<void> started;
  std::promise<void> release;
};

TEST_F(NativeRemoteFileManagerServiceTest, GivesAnErrorAndNotTheCachedFileWithoutAConnection) {
  Plant(std::string(kDigest) + ".0_41");
  const auto silent = std::make_shared<CountingNetwork>();
  manager = CreateNativeRemoteFileManagerService(silent, fileSystem, systemInfo);
  EXPECT_EQ(Get(), "std.logic_error.invalid_argument: Invalid connection interface");
  EXPECT_EQ(silent->timeouts, 60s);
}

TEST_F(NativeRemoteFileManagerServiceTest, IsDisposedAsItsExecutorIs) {
  EXPECT_TRUE(manager->Dispose(10s));
  EXPECT_TRUE(manager->Dispose(0ms));

  const auto held = std::make_shared<CountingNetwork>();
  manager = CreateNativeRemoteFileManagerService(held, fileSystem, systemInfo);
  manager->GetFileAsync(kUrl, "", nullptr);
  held->started.get_future().wait();
  manager->GetFileAsync(kUrl, "", nullptr);
  auto disposed = std::async(std::launch::async, [this] { return manager->Dispose(1ms); });
  EXPECT_EQ(disposed.wait_for(50ms), std::future_status::timeout);
  held->release.set_value();
  EXPECT_FALSE(disposed.get());
  log.AllowLines(LogLevel::Warning, "TaskExecutor", testing::_);
}

TEST_F(NativeRemoteFileManagerServiceTest, RunsNoAsynchronousRequestAfterDispose) {
  AnswerWith(404);
  manager->Dispose(10s);
  std::future<std::string> late = GetAsync();
  EXPECT_EQ(Get(), "remotefilemanager.request_failed: 404");
  ExpectNeverCalled(late);
  EXPECT_THAT(host.urlSession->Requests(), SizeIs(1));
}

TEST_F(NativeRemoteFileManagerServiceTest, FinishesADownloadWithoutTheManager) {
  std::promise<void> managerGone;
  host.urlSession->SetServer([gone = managerGone.get_future().share()](const UrlRequest&) {
    gone.wait();
    return FakeUrlSession::Respond(200, "late", {{"Last-Modified", kDate}, {"ETag", "\"1\""}});
  });
  std::future<std::string> download = GetAsync();
  EXPECT_TRUE(WaitUntil([this] { return host.urlSession->Requests().size() == 1; }));
  manager.reset();
  managerGone.set_value();
  EXPECT_EQ(TestSupport::ReadFileBytes(download.get()), "late");
}

TEST_F(NativeRemoteFileManagerServiceTest, ServesSeveralThreadsAtOnce) {
  AnswerWith(200, "body", {{"Last-Modified", kDate}, {"ETag", "\"1\""}});
  log.AllowLines(LogLevel::Warning, kTag, testing::_);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this, i] {
      for (int j = 0; j < 20; ++j) {
        // Two threads share each URL and race for its entry.
        const std::string url = kUrl + std::to_string(i % 2);
        if (j % 2 == 0) {
          EXPECT_THAT(Get(url), HasSubstr(".1709634030_223122"));
        } else {
          EXPECT_THAT(GetAsync(url).get(), HasSubstr(".1709634030_223122"));
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(Cached(), SizeIs(2));
}

TEST_F(NativeRemoteFileManagerServiceTest, GivesAFileThatReadsItsTextOnce) {
  const std::string path = Plant("file.json", "{\"a\": \"ä\"}");
  const auto file = std::make_shared<Velmora::NativeRemoteFile>(path);
  EXPECT_EQ(file->ToUri(), path);
  EXPECT_EQ(file->ReadJsonStringFromFile(), "{\"a\": \"ä\"}");
  fs::remove(path);
  EXPECT_EQ(file->ReadJsonStringFromFile(), "{\"a\": \"ä\"}");
}

TEST_F(NativeRemoteFileManagerServiceTest, GivesAFileThatIsEmptyWhenItCannotBeRead) {
  const auto missing = std::make_shared<Velmora::NativeRemoteFile>(CacheFolder() + "/none");
  EXPECT_EQ(missing->ReadJsonStringFromFile(), "");
  Plant("none", "too late");
  EXPECT_EQ(missing->ReadJsonStringFromFile(), "");
  EXPECT_EQ(std::make_shared<Velmora::NativeRemoteFile>(Plant("binary", "\xff\xfe"))
                ->ReadJsonStringFromFile(),
            "");
  EXPECT_EQ(std::make_shared<Velmora::NativeRemoteFile>("")->ReadJsonStringFromFile(), "");
}

TEST_F(NativeRemoteFileManagerServiceTest, GivesAFileThatSeveralThreadsMayRead) {
  const std::string text(1'000'000, 't');
  const auto file = std::make_shared<Velmora::NativeRemoteFile>(Plant("file", text));
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] { EXPECT_TRUE(file->ReadJsonStringFromFile() == text); });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
