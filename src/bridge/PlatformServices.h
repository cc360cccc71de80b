#pragma once

#include <chrono>
#include <memory>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "bridge/ServiceFactories.h"

namespace Velmora {

// The service registry: makes every service once, at construction, and hands out shared references.
//
// Nothing changes after construction, so any thread may ask. Services live as long as one of their
// owners does: this registry, the core, or whoever asked for one. A service without a factory is an
// empty pointer.
class PlatformServices : public virtual PlatformServicesInterface, public Object {
 public:
  // Makes the services, those that others need first. What a factory throws passes through, after
  // the services already made have been released, the last one first.
  explicit PlatformServices(const ServiceFactories& factories);

  // Releases the services in the reverse order of the members below.
  ~PlatformServices() override;

  // Disposes the remote file manager, the only service with work of its own under way, and returns
  // what it says; true without one.
  bool Dispose(std::chrono::milliseconds timeout) override;

  std::shared_ptr<CryptoServiceInterface> GetCryptoService() const override;
  std::shared_ptr<DatabaseServiceInterface> GetDatabaseService() const override;
  std::shared_ptr<EncodingServiceInterface> GetEncodingService() const override;
  std::shared_ptr<FileSystemServiceInterface> GetFileSystemService() const override;
  std::shared_ptr<JsonUtilityServiceInterface> GetJsonUtilityService() const override;
  std::shared_ptr<LocalStorageServiceInterface> GetLocalStorageService() const override;
  std::shared_ptr<LoggingServiceInterface> GetLoggingService() const override;
  std::shared_ptr<NetworkServiceInterface> GetNetworkService() const override;
  std::shared_ptr<RemoteFileManagerServiceInterface> GetRemoteFileManagerService() const override;
  std::shared_ptr<SystemInfoServiceInterface> GetSystemInfoService() const override;
  std::shared_ptr<UIServiceInterface> GetUIService() const override;
  std::shared_ptr<URLServiceInterface> GetURLService() const override;
  std::shared_ptr<CompressedFileServiceInterface> GetCompressedFileService() const override;

 private:
  void MakeServices(const ServiceFactories& factories);
  void ReleaseNewestFirst();

  std::shared_ptr<CryptoServiceInterface> cryptoService_;
  std::shared_ptr<DatabaseServiceInterface> databaseService_;
  std::shared_ptr<EncodingServiceInterface> encodingService_;
  std::shared_ptr<FileSystemServiceInterface> fileSystemService_;
  std::shared_ptr<JsonUtilityServiceInterface> jsonUtilityService_;
  std::shared_ptr<LocalStorageServiceInterface> localStorageService_;
  std::shared_ptr<LoggingServiceInterface> loggingService_;
  std::shared_ptr<NetworkServiceInterface> networkService_;
  std::shared_ptr<RemoteFileManagerServiceInterface> remoteFileManagerService_;
  std::shared_ptr<SystemInfoServiceInterface> systemInfoService_;
  std::shared_ptr<UIServiceInterface> uiService_;
  std::shared_ptr<URLServiceInterface> urlService_;
  std::shared_ptr<CompressedFileServiceInterface> compressedFileService_;
};

// A registry of the native services, made now.
std::shared_ptr<PlatformServicesInterface> CreateNativePlatformServices();

}  // namespace Velmora
