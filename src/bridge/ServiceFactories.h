#pragma once

#include <functional>
#include <memory>

#include "VelmoraCore/PlatformServicesInterface.h"

namespace Velmora {

// How PlatformServices makes each of its services. A factory returns a new service or throws; it is
// called at most once per PlatformServices. An empty factory leaves its service out.
struct ServiceFactories {
  using SystemInfo = std::shared_ptr<SystemInfoServiceInterface>;
  using FileSystem = std::shared_ptr<FileSystemServiceInterface>;
  using Network = std::shared_ptr<NetworkServiceInterface>;

  std::function<std::shared_ptr<CryptoServiceInterface>()> crypto;
  std::function<SystemInfo()> systemInfo;
  std::function<std::shared_ptr<DatabaseServiceInterface>(const SystemInfo&)> database;
  std::function<std::shared_ptr<EncodingServiceInterface>()> encoding;
  std::function<FileSystem()> fileSystem;
  std::function<std::shared_ptr<JsonUtilityServiceInterface>()> jsonUtility;
  std::function<std::shared_ptr<LocalStorageServiceInterface>()> localStorage;
  std::function<std::shared_ptr<LoggingServiceInterface>()> logging;
  std::function<Network(const SystemInfo&)> network;
  std::function<std::shared_ptr<RemoteFileManagerServiceInterface>(
      const Network&, const FileSystem&, const SystemInfo&)>
      remoteFileManager;
  std::function<std::shared_ptr<UIServiceInterface>()> ui;
  std::function<std::shared_ptr<URLServiceInterface>()> url;
  std::function<std::shared_ptr<CompressedFileServiceInterface>()> compressedFile;
};

// The native services of this library.
ServiceFactories NativeServiceFactories();

}  // namespace Velmora
