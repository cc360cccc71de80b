// The other process of the tests, on the whole library and a device of its own.
//
//   hang URL MILLISECONDS   starts 64 requests and returns from main so much later
//   download URL TIMES      downloads a file into the cache, again and again
//   prune URL TIMES         deletes everything else from the cache, again and again

#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <string>

#include "QEXCore_iOS/GetCore.h"
#include "VelmoraCore/Core.h"
#include "VelmoraCore/NetworkServiceInterface.h"
#include "VelmoraCore/RemoteFileManagerServiceInterface.h"
#include "bridge/VelmoraCoreBridge.h"

namespace {

using namespace std::chrono_literals;

int Hang(const std::string& url, int milliseconds) {
  constexpr int kRequests = 64;
  const auto network =
      Velmora::VelmoraCoreBridge::GetInstance()->GetPlatformServices()->GetNetworkService();
  for (int i = 0; i < kRequests; ++i) {
    network->ConnectUrlAsync(url, Velmora::HttpCommandType::Get, "", {}, 60s, 60s, nullptr);
  }
  std::promise<void> never;
  never.get_future().wait_for(std::chrono::milliseconds(milliseconds));
  return EXIT_SUCCESS;
}

std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> Files() {
  return Velmora::VelmoraCoreBridge::GetInstance()
      ->GetPlatformServices()
      ->GetRemoteFileManagerService();
}

int Prune(const std::string& url, int times) {
  const auto files = Files();
  for (int i = 0; i < times; ++i) files->DeleteCachedDataNotInList("", {url});
  return EXIT_SUCCESS;
}

int Download(const std::string& url, int times) {
  const auto files = Files();
  for (int i = 0; i < times; ++i) {
    const auto result = files->GetFileSync(url, "");
    if (!result) return EXIT_FAILURE;
    const std::string text = result.GetValue()->ReadJsonStringFromFile();
    // The other process may have replaced it: then it is gone, but never half there.
    if (!text.empty() && text.size() != 100'000) return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string work = argc == 4 ? argv[1] : "";
  if (work == "hang") return Hang(argv[2], std::atoi(argv[3]));
  if (work == "download") return Download(argv[2], std::atoi(argv[3]));
  if (work == "prune") return Prune(argv[2], std::atoi(argv[3]));
  std::cerr << "what shall be done?\n";
  return EXIT_FAILURE;
}
