#include "bridge/ServiceFactories.h"

#include "services/database/NativeDatabaseService.h"
#include "services/datastore/NativeLocalStorageService.h"
#include "services/filesystem/NativeCompressedFileService.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "services/json/NativeJsonUtilityService.h"
#include "services/network/NativeNetworkService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeCryptoService.h"
#include "services/system/NativeEncodingService.h"
#include "services/system/NativeLoggingService.h"
#include "services/system/NativeSystemInfoService.h"
#include "services/system/NativeUrlService.h"
#include "services/ui/NativeUiService.h"

namespace Velmora {

ServiceFactories NativeServiceFactories() {
  ServiceFactories factories;
  factories.crypto = CreateNativeCryptoService;
  factories.systemInfo = CreateNativeSystemInfoService;
  factories.database = CreateNativeDatabaseService;
  factories.encoding = CreateNativeEncodingService;
  factories.fileSystem = CreateNativeFileSystemService;
  factories.jsonUtility = CreateNativeJsonUtilityService;
  factories.localStorage = CreateNativeLocalStorageService;
  factories.logging = CreateNativeLoggingService;
  factories.network = CreateNativeNetworkService;
  factories.remoteFileManager = CreateNativeRemoteFileManagerService;
  factories.ui = CreateNativeUiService;
  factories.url = CreateNativeUrlService;
  factories.compressedFile = CreateNativeCompressedFileService;
  return factories;
}

}  // namespace Velmora
