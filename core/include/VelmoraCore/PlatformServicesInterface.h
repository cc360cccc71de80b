#pragma once

#include <chrono>
#include <memory>

#include "VelmoraCore/CompressedFileServiceInterface.h"
#include "VelmoraCore/CryptoServiceInterface.h"
#include "VelmoraCore/DatabaseServiceInterface.h"
#include "VelmoraCore/EncodingServiceInterface.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/FileSystemServiceInterface.h"
#include "VelmoraCore/JsonUtilityServiceInterface.h"
#include "VelmoraCore/LocalStorageServiceInterface.h"
#include "VelmoraCore/LoggingServiceInterface.h"
#include "VelmoraCore/NetworkServiceInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/RemoteFileManagerServiceInterface.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"
#include "VelmoraCore/UIServiceInterface.h"
#include "VelmoraCore/URLServiceInterface.h"

namespace Velmora {

// The one object through which the core reaches the device. May be called on any thread. Every
// getter returns the same service every time, shared with the caller, and never an empty pointer.
class VELMORA_CORE_API PlatformServicesInterface : public virtual ObjectInterface {
 public:
  ~PlatformServicesInterface() override;

  // Stops the work that services do on threads of their own, waiting for it up to `timeout`. True
  // when all of it was done by then.
  virtual bool Dispose(std::chrono::milliseconds timeout) = 0;

  virtual std::shared_ptr<CryptoServiceInterface> GetCryptoService() const = 0;
  virtual std::shared_ptr<DatabaseServiceInterface> GetDatabaseService() const = 0;
  virtual std::shared_ptr<EncodingServiceInterface> GetEncodingService() const = 0;
  virtual std::shared_ptr<FileSystemServiceInterface> GetFileSystemService() const = 0;
  virtual std::shared_ptr<JsonUtilityServiceInterface> GetJsonUtilityService() const = 0;
  virtual std::shared_ptr<LocalStorageServiceInterface> GetLocalStorageService() const = 0;
  virtual std::shared_ptr<LoggingServiceInterface> GetLoggingService() const = 0;
  virtual std::shared_ptr<NetworkServiceInterface> GetNetworkService() const = 0;
  virtual std::shared_ptr<RemoteFileManagerServiceInterface> GetRemoteFileManagerService()
      const = 0;
  virtual std::shared_ptr<SystemInfoServiceInterface> GetSystemInfoService() const = 0;
  virtual std::shared_ptr<UIServiceInterface> GetUIService() const = 0;
  virtual std::shared_ptr<URLServiceInterface> GetURLService() const = 0;
  virtual std::shared_ptr<CompressedFileServiceInterface> GetCompressedFileService() const = 0;
};

}  // namespace Velmora
