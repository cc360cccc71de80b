#pragma once

#include <map>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "services/filesystem/NativeFileSystemService.h"
#include "services/network/NativeNetworkService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeSystemInfoService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/tls/TrustedServer.h"

// Every service real, down to libcurl; the files lie in a temporary folder.
class NetworkFixture : public testing::Test {
 protected:
  using Headers = std::map<std::string, std::string>;

  NetworkFixture() {
    Platform::Host real = host.Copy();
    real.urlSession = session;
    Platform::Host::Install(real);
    systemInfo = Velmora::CreateNativeSystemInfoService();
    network = Velmora::CreateNativeNetworkService(systemInfo);
    manager = Velmora::CreateNativeRemoteFileManagerService(
        network, Velmora::CreateNativeFileSystemService(), systemInfo);
  }

  std::shared_ptr<Velmora::HttpConnectionInterface> Get(const std::string& url,
                                                        const Headers& headers = {}) {
    using namespace std::chrono_literals;
    return network->ConnectUrl(url, Velmora::HttpCommandType::Get, "", headers, 30s, 30s);
  }

  // The path that a download gives, or the error's code and message.
  std::string Download(const std::string& url) {
    const auto result = manager->GetFileSync(url, "");
    if (result) return result.GetValue()->ToUri();
    return result.GetError().GetCode() + ": " + result.GetError().GetMessage();
  }

  std::string CacheFolder() const {
    return systemInfo->GetApplicationCacheDir() + "/krvdownloadcache";
  }

  TestSupport::LogCapture log;
  TestSupport::FakeHost host;
  const std::shared_ptr<Platform::CurlUrlSession> session =
      std::make_shared<Platform::CurlUrlSession>(TestSupport::TrustedServer::SessionOptions());
  std::shared_ptr<Velmora::SystemInfoServiceInterface> systemInfo;
  std::shared_ptr<Velmora::NetworkServiceInterface> network;
  std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> manager;
};
