#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "support/Guarded.h"

namespace TestSupport {

// A registry of the services that a test puts into it; the others are empty pointers. To be filled
// before anybody else sees it.
class FakePlatformServices final : public Velmora::Object,
                                   public virtual Velmora::PlatformServicesInterface {
 public:
  std::shared_ptr<Velmora::CryptoServiceInterface> crypto;
  std::shared_ptr<Velmora::DatabaseServiceInterface> database;
  std::shared_ptr<Velmora::EncodingServiceInterface> encoding;
  std::shared_ptr<Velmora::FileSystemServiceInterface> fileSystem;
  std::shared_ptr<Velmora::JsonUtilityServiceInterface> jsonUtility;
  std::shared_ptr<Velmora::LocalStorageServiceInterface> localStorage;
  std::shared_ptr<Velmora::LoggingServiceInterface> logging;
  std::shared_ptr<Velmora::NetworkServiceInterface> network;
  std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> remoteFileManager;
  std::shared_ptr<Velmora::SystemInfoServiceInterface> systemInfo;
  std::shared_ptr<Velmora::UIServiceInterface> ui;
  std::shared_ptr<Velmora::URLServiceInterface> url;
  std::shared_ptr<Velmora::CompressedFileServiceInterface> compressedFile;

  // What Dispose answers, and the timeouts that it was given.
  bool disposeResult = true;
  std::vector<std::chrono::milliseconds> DisposeTimeouts() const { return timeouts_.Get(); }

  bool Dispose(std::chrono::milliseconds timeout) override {
    timeouts_.With([timeout](auto& timeouts) { timeouts.push_back(timeout); });
    return disposeResult;
  }

  std::shared_ptr<Velmora::CryptoServiceInterface> GetCryptoService() const override {
    return crypto;
  }
  std::shared_ptr<Velmora::DatabaseServiceInterface> GetDatabaseService() const override {
    return database;
  }
  std::shared_ptr<Velmora::EncodingServiceInterface> GetEncodingService() const override {
    return encoding;
  }
  std::shared_ptr<Velmora::FileSystemServiceInterface> GetFileSystemService() const override {
    return fileSystem;
  }
  std::shared_ptr<Velmora::JsonUtilityServiceInterface> GetJsonUtilityService() const override {
    return jsonUtility;
  }
  std::shared_ptr<Velmora::LocalStorageServiceInterface> GetLocalStorageService() const override {
    return localStorage;
  }
  std::shared_ptr<Velmora::LoggingServiceInterface> GetLoggingService() const override {
    return logging;
  }
  std::shared_ptr<Velmora::NetworkServiceInterface> GetNetworkService() const override {
    return network;
  }
  std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> GetRemoteFileManagerService()
      const override {
    return remoteFileManager;
  }
  std::shared_ptr<Velmora::SystemInfoServiceInterface> GetSystemInfoService() const override {
    return systemInfo;
  }
  std::shared_ptr<Velmora::UIServiceInterface> GetUIService() const override { return ui; }
  std::shared_ptr<Velmora::URLServiceInterface> GetURLService() const override { return url; }
  std::shared_ptr<Velmora::CompressedFileServiceInterface> GetCompressedFileService()
      const override {
    return compressedFile;
  }

 private:
  Guarded<std::vector<std::chrono::milliseconds>> timeouts_;
};

}  // namespace TestSupport
