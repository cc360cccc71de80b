#include "services/network/NativeRemoteFileManagerService.h"

#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/HttpCommandType.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/StringUtils.h"
#include "services/network/RemoteFileCache.h"
#include "services/network/RemoteFileValues.h"

namespace Velmora {
namespace {

using Headers = std::map<std::string, std::string>;

constexpr const char* kClassName = "NativeRemoteFileManagerService";
constexpr const char* kSourceLocation = "src/services/network/NativeRemoteFileManagerService";

template <class Service>
const std::shared_ptr<Service>& Require(const std::shared_ptr<Service>& service, const char* name,
                                        int line) {
  if (service) return service;
  throw SdkError(ErrorCodes::kPlatformServicesMissingService, name,
                 DebugInfo(kSourceLocation, line));
}

void CheckUrl(const std::string& url) {
  if (StringUtils::StringIsUrl(url)) return;
  throw SdkError(ErrorCodes::kInvalidArgument, "Invalid url", DebugInfo(kSourceLocation, __LINE__));
}

Headers HeadersFor(const std::optional<std::string>& cached) {
  return cached ? RevalidationHeaders(*cached) : Headers();
}

std::shared_ptr<const RemoteFileCache> MakeCache(FileSystemServiceInterface& fileSystem,
                                                 SystemInfoServiceInterface& systemInfo) {
  const std::string separator = fileSystem.GetPathSeparator();
  return std::make_shared<RemoteFileCache>(
      systemInfo.GetApplicationCacheDir() + separator + "krvdownloadcache", separator);
}

}  // namespace

NativeRemoteFileManagerService::NativeRemoteFileManagerService(
    const std::shared_ptr<NetworkServiceInterface>& networkService,
    const std::shared_ptr<FileSystemServiceInterface>& fileSystemService,
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService)
    : Object(kClassName),
      executor_(1, kClassName, systemInfoService),
      networkService_(Require(networkService, "Network Service", __LINE__)),
      fileSystemService_(Require(fileSystemService, "FileSystem Service", __LINE__)),
      systemInfoService_(Require(systemInfoService, "SystemInfo Service", __LINE__)),
      cache_(MakeCache(*fileSystemService_, *systemInfoService_)) {}

NativeRemoteFileManagerService::~NativeRemoteFileManagerService() = default;

bool NativeRemoteFileManagerService::Dispose(std::chrono::milliseconds timeout) {
  return executor_.Dispose(timeout);
}

// The tasks and callbacks hold what they need themselves: they may run after the manager has gone.
void NativeRemoteFileManagerService::GetFileAsync(const std::string& url,
                                                  const std::string& subFolder,
                                                  FileCallback callback) {
  executor_.Execute([network = networkService_, cache = cache_, url, subFolder,
                     callback = std::move(callback)] {
    CheckUrl(url);
    const std::optional<std::string> cached = cache->Find(url, subFolder);
    const auto complete = [cache, url, subFolder, cached,
                           callback](const std::shared_ptr<HttpConnectionInterface>& connection) {
      const FileResult result = cache->Process(connection, url, subFolder, cached);
      if (callback) callback(result);
    };
    network->ConnectUrlAsync(url, HttpCommandType::Get, "", HeadersFor(cached), TIMEOUT_CONNECTION,
                             TIMEOUT_FILE_READ, complete);
  });
}

NativeRemoteFileManagerService::FileResult NativeRemoteFileManagerService::GetFileSync(
    const std::string& url, const std::string& subFolder) {
  CheckUrl(url);
  const std::optional<std::string> cached = cache_->Find(url, subFolder);
  const auto connection = networkService_->ConnectUrl(
      url, HttpCommandType::Get, "", HeadersFor(cached), TIMEOUT_CONNECTION, TIMEOUT_FILE_READ);
  return cache_->Process(connection, url, subFolder, cached);
}

NativeRemoteFileManagerService::FileResult NativeRemoteFileManagerService::GetFileFromCache(
    const std::string& url, const std::string& subFolder) {
  return cache_->FileFromCache(url, subFolder);
}

void NativeRemoteFileManagerService::DeleteCachedDataNotInList(
    const std::string& subFolder, const std::deque<std::string>& urls) {
  cache_->DeleteAllBut(subFolder, urls);
}

std::shared_ptr<RemoteFileManagerServiceInterface> CreateNativeRemoteFileManagerService(
    const std::shared_ptr<NetworkServiceInterface>& networkService,
    const std::shared_ptr<FileSystemServiceInterface>& fileSystemService,
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService) {
  return std::make_shared<NativeRemoteFileManagerService>(networkService, fileSystemService,
                                                          systemInfoService);
}

}  // namespace Velmora
