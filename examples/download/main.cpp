// Downloads a file as a core would, by way of the remote file manager's cache, and shows what the
// server answered and which file serves it.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/NetworkServiceInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/RemoteFileManagerServiceInterface.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "services/network/NativeNetworkService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeSystemInfoService.h"

namespace {

using Velmora::HttpCommandType;
using Headers = std::map<std::string, std::string>;
using std::chrono::seconds;

// Passes requests on, and shows what was asked and answered.
class TalkativeNetwork final : public Velmora::Object,
                               public virtual Velmora::NetworkServiceInterface {
 public:
  explicit TalkativeNetwork(std::shared_ptr<Velmora::NetworkServiceInterface> real)
      : real_(std::move(real)) {}

  std::shared_ptr<Velmora::HttpConnectionInterface> ConnectUrl(
      const std::string& url, HttpCommandType command, const std::string& body,
      const Headers& headers, seconds connectTimeout, seconds readTimeout) override {
    std::cout << "  GET " << url << '\n';
    for (const auto& [name, value] : headers) std::cout << "    " << name << ": " << value << '\n';
    auto connection = real_->ConnectUrl(url, command, body, headers, connectTimeout, readTimeout);
    if (connection) {
      std::cout << "  " << connection->GetResponseCode() << ' ' << connection->GetResponseMessage()
                << ", " << connection->GetResponseRawData()->GetSize() << " bytes\n";
    }
    return connection;
  }

  void ConnectUrlAsync(const std::string& url, HttpCommandType command, const std::string& body,
                       const Headers& headers, seconds connectTimeout, seconds readTimeout,
                       ConnectionCallback callback) override {
    real_->ConnectUrlAsync(url, command, body, headers, connectTimeout, readTimeout,
                           std::move(callback));
  }

 private:
  const std::shared_ptr<Velmora::NetworkServiceInterface> real_;
};

int Download(const std::string& url) {
  const auto systemInfo = Velmora::CreateNativeSystemInfoService();
  const auto network =
      std::make_shared<TalkativeNetwork>(Velmora::CreateNativeNetworkService(systemInfo));
  const auto files = Velmora::CreateNativeRemoteFileManagerService(
      network, Velmora::CreateNativeFileSystemService(), systemInfo);
  const auto result = files->GetFileSync(url, "demo");
  if (!result) {
    std::cout << "  refused: " << result.GetError().what() << '\n';
    return EXIT_FAILURE;
  }
  const auto& file = result.GetValue();
  const std::filesystem::path path = file->ToUri();
  std::cout << "  served from " << path.filename().string() << "\n  in "
            << path.parent_path().string() << "\n  which holds: " << file->ReadJsonStringFromFile()
            << '\n';
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Downloads a file into QEXCore's cache", "download");
  std::string url;
  Platform::HostOptions options;
  app.add_option("url", url, "what to download")->required();
  app.add_option("--trust", options.extraTrustFile, "PEM file of an authority to trust");
  try {
    app.parse(argc, argv);
    Platform::Host::Install(Platform::Host::CreateDefault(options));
    return Download(url);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& error) {
    std::cerr << "download: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
