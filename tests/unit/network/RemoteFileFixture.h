#pragma once

#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "services/filesystem/NativeFileSystemService.h"
#include "services/network/NativeNetworkService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeSystemInfoService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"

// A remote file manager with every service real, on a device whose URL session the test answers.
class RemoteFileFixture : public testing::Test {
 protected:
  using FileResult = Velmora::RemoteFileManagerServiceInterface::FileResult;
  using Headers = std::map<std::string, std::string>;

  static constexpr const char* kTag = "RemoteFileManager: ";
  static constexpr const char* kUrl = "https://example.com/rules.zip";
  static constexpr const char* kDigest = "R+tqGjKFi0lJyN83uKd8S4d5g9_PImMYmeEe97GltLw=";
  static constexpr const char* kDate = "Tue, 05 Mar 2024 10:20:30 GMT";

  void AnswerWith(std::int32_t status, const std::string& body = {}, const Headers& headers = {}) {
    host.urlSession->SetServer(
        [answer = TestSupport::FakeUrlSession::Respond(status, body, headers)](
            const Platform::UrlRequest&) { return answer; });
  }

  // What the last request said beside its user agent.
  Headers LastHeaders() const {
    const Platform::UrlRequest request = host.urlSession->Requests().back();
    Headers headers;
    for (const Platform::UrlHeader& header : request.headers) {
      if (header.name != "User-Agent") headers[header.name] = header.value;
    }
    return headers;
  }

  std::string CacheFolder(const std::string& subFolder = "") const {
    const std::string folder = systemInfo->GetApplicationCacheDir() + "/krvdownloadcache";
    return subFolder.empty() ? folder : folder + "/" + subFolder;
  }

  // Puts a file into the cache, and gives its path.
  std::string Plant(const std::string& name, const std::string& contents = "cached",
                    const std::string& subFolder = "") const {
    std::filesystem::create_directories(CacheFolder(subFolder));
    const std::string path = CacheFolder(subFolder) + "/" + name;
    EXPECT_TRUE(host.fileManager->WriteFile(path, contents, nullptr));
    return path;
  }

  std::vector<std::string> Cached(const std::string& subFolder = "") const {
    std::vector<std::string> names;
    for (auto& entry : host.fileManager->ContentsOfDirectory(CacheFolder(subFolder), nullptr)) {
      names.push_back(entry.name);
    }
    return names;
  }

  // The path of a result, or the error's code and message.
  static std::string TextOf(const FileResult& result) {
    if (result) return result.GetValue()->ToUri();
    return result.GetError().GetCode() + ": " + result.GetError().GetMessage();
  }

  std::string Get(const std::string& url = kUrl, const std::string& subFolder = "") {
    return TextOf(manager->GetFileSync(url, subFolder));
  }

  TestSupport::LogCapture log;
  TestSupport::FakeHost host;
  const std::shared_ptr<Velmora::SystemInfoServiceInterface> systemInfo =
      Velmora::CreateNativeSystemInfoService();
  const std::shared_ptr<Velmora::FileSystemServiceInterface> fileSystem =
      Velmora::CreateNativeFileSystemService();
  const std::shared_ptr<Velmora::NetworkServiceInterface> network =
      Velmora::CreateNativeNetworkService(systemInfo);
  std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> manager =
      Velmora::CreateNativeRemoteFileManagerService(network, fileSystem, systemInfo);
};
