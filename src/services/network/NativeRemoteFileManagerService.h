#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/FileSystemServiceInterface.h"
#include "VelmoraCore/NetworkServiceInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/RemoteFileManagerServiceInterface.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"
#include "VelmoraCore/TaskExecutor.h"

namespace Velmora {

class RemoteFileCache;

// Downloads into the folder "krvdownloadcache" of the application's cache directory. Asynchronous
// requests are made one after the other on a thread named after the class; their results come on
// the network service's thread, also when the manager has gone meanwhile.
class NativeRemoteFileManagerService : public Object,
                                       public virtual RemoteFileManagerServiceInterface {
 public:
  static constexpr std::chrono::seconds TIMEOUT_CONNECTION{30};
  static constexpr std::chrono::seconds TIMEOUT_FILE_READ{30};

  // Throws an SdkError "platform_services.missing_service" that names the first service missing.
  NativeRemoteFileManagerService(
      const std::shared_ptr<NetworkServiceInterface>& networkService,
      const std::shared_ptr<FileSystemServiceInterface>& fileSystemService,
      const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService);
  ~NativeRemoteFileManagerService() override;

  bool Dispose(std::chrono::milliseconds timeout) override;
  void GetFileAsync(const std::string& url, const std::string& subFolder,
                    FileCallback callback) override;
  FileResult GetFileSync(const std::string& url, const std::string& subFolder) override;
  FileResult GetFileFromCache(const std::string& url, const std::string& subFolder) override;
  void DeleteCachedDataNotInList(const std::string& subFolder,
                                 const std::deque<std::string>& urls) override;

 private:
  TaskExecutor executor_;
  const std::shared_ptr<NetworkServiceInterface> networkService_;
  const std::shared_ptr<FileSystemServiceInterface> fileSystemService_;
  const std::shared_ptr<SystemInfoServiceInterface> systemInfoService_;
  // Shared with the requests under way, which outlive the manager.
  const std::shared_ptr<const RemoteFileCache> cache_;
};

std::shared_ptr<RemoteFileManagerServiceInterface> CreateNativeRemoteFileManagerService(
    const std::shared_ptr<NetworkServiceInterface>& networkService,
    const std::shared_ptr<FileSystemServiceInterface>& fileSystemService,
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService);

}  // namespace Velmora
