#include "bridge/PlatformServices.h"

namespace Velmora {

namespace {

template <class Service, class... Dependencies>
std::shared_ptr<Service> Make(
    const std::function<std::shared_ptr<Service>(const Dependencies&...)>& factory,
    const Dependencies&... dependencies) {
  return factory ? factory(dependencies...) : nullptr;
}

}  // namespace

PlatformServices::PlatformServices(const ServiceFactories& factories) : Object("PlatformServices") {
  try {
    MakeServices(factories);
  } catch (...) {
    ReleaseNewestFirst();
    throw;
  }
}

PlatformServices::~PlatformServices() = default;

// The order is not that of the members: what is handed on must exist before those who use it.
void PlatformServices::MakeServices(const ServiceFactories& factories) {
  cryptoService_ = Make(factories.crypto);
  systemInfoService_ = Make(factories.systemInfo);
  databaseService_ = Make(factories.database, systemInfoService_);
  encodingService_ = Make(factories.encoding);
  fileSystemService_ = Make(factories.fileSystem);
  jsonUtilityService_ = Make(factories.jsonUtility);
  localStorageService_ = Make(factories.localStorage);
  loggingService_ = Make(factories.logging);
  networkService_ = Make(factories.network, systemInfoService_);
  remoteFileManagerService_ =
      Make(factories.remoteFileManager, networkService_, fileSystemService_, systemInfoService_);
  uiService_ = Make(factories.ui);
  urlService_ = Make(factories.url);
  compressedFileService_ = Make(factories.compressedFile);
}

void PlatformServices::ReleaseNewestFirst() {
  compressedFileService_.reset();
  urlService_.reset();
  uiService_.reset();
  remoteFileManagerService_.reset();
  networkService_.reset();
  loggingService_.reset();
  localStorageService_.reset();
  jsonUtilityService_.reset();
  fileSystemService_.reset();
  encodingService_.reset();
  databaseService_.reset();
  systemInfoService_.reset();
  cryptoService_.reset();
}

bool PlatformServices::Dispose(std::chrono::milliseconds timeout) {
  return remoteFileManagerService_ ? remoteFileManagerService_->Dispose(timeout) : true;
}

std::shared_ptr<CryptoServiceInterface> PlatformServices::GetCryptoService() const {
  return cryptoService_;
}

std::shared_ptr<DatabaseServiceInterface> PlatformServices::GetDatabaseService() const {
  return databaseService_;
}

std::shared_ptr<EncodingServiceInterface> PlatformServices::GetEncodingService() const {
  return encodingService_;
}

std::shared_ptr<FileSystemServiceInterface> PlatformServices::GetFileSystemService() const {
  return fileSystemService_;
}

std::shared_ptr<JsonUtilityServiceInterface> PlatformServices::GetJsonUtilityService() const {
  return jsonUtilityService_;
}

std::shared_ptr<LocalStorageServiceInterface> PlatformServices::GetLocalStorageService() const {
  return localStorageService_;
}

std::shared_ptr<LoggingServiceInterface> PlatformServices::GetLoggingService() const {
  return loggingService_;
}

std::shared_ptr<NetworkServiceInterface> PlatformServices::GetNetworkService() const {
  return networkService_;
}

std::shared_ptr<RemoteFileManagerServiceInterface> PlatformServices::GetRemoteFileManagerService()
    const {
  return remoteFileManagerService_;
}

std::shared_ptr<SystemInfoServiceInterface> PlatformServices::GetSystemInfoService() const {
  return systemInfoService_;
}

std::shared_ptr<UIServiceInterface> PlatformServices::GetUIService() const { return uiService_; }

std::shared_ptr<URLServiceInterface> PlatformServices::GetURLService() const { return urlService_; }

std::shared_ptr<CompressedFileServiceInterface> PlatformServices::GetCompressedFileService() const {
  return compressedFileService_;
}

std::shared_ptr<PlatformServicesInterface> CreateNativePlatformServices() {
  return std::make_shared<PlatformServices>(NativeServiceFactories());
}

}  // namespace Velmora
