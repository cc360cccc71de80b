// The destructors of the interfaces, so that each one's vtable and type information exist once, in
// the core library, whatever shared object implements it.
#include "VelmoraCore/AlertListenerInterface.h"
#include "VelmoraCore/AppStateListenerInterface.h"
#include "VelmoraCore/CompressedFileServiceInterface.h"
#include "VelmoraCore/CryptoServiceInterface.h"
#include "VelmoraCore/DataStoreInterface.h"
#include "VelmoraCore/DatabaseInterface.h"
#include "VelmoraCore/DatabaseServiceInterface.h"
#include "VelmoraCore/DirectoryHandlerInterface.h"
#include "VelmoraCore/DisplayInformationInterface.h"
#include "VelmoraCore/EncodingServiceInterface.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "VelmoraCore/ExternalModuleServicesInterface.h"
#include "VelmoraCore/FileHandlerInterface.h"
#include "VelmoraCore/FileSystemServiceInterface.h"
#include "VelmoraCore/FloatingButtonInterface.h"
#include "VelmoraCore/FloatingButtonListenerInterface.h"
#include "VelmoraCore/FullScreenMessageUiInterface.h"
#include "VelmoraCore/FullscreenListenerInterface.h"
#include "VelmoraCore/HttpConnectionDataInterface.h"
#include "VelmoraCore/HttpConnectionInterface.h"
#include "VelmoraCore/JsonArray.h"
#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/JsonUtilityServiceInterface.h"
#include "VelmoraCore/LocalStorageServiceInterface.h"
#include "VelmoraCore/LoggingServiceInterface.h"
#include "VelmoraCore/NetworkServiceInterface.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/QueryResultInterface.h"
#include "VelmoraCore/RemoteFileInterface.h"
#include "VelmoraCore/RemoteFileManagerServiceInterface.h"
#include "VelmoraCore/StreamDecoderInterface.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"
#include "VelmoraCore/TaskExecutorInterface.h"
#include "VelmoraCore/UIServiceInterface.h"
#include "VelmoraCore/URLServiceInterface.h"
#include "VelmoraCore/UuidInterface.h"

namespace Velmora {

AlertListenerInterface::~AlertListenerInterface() = default;
AppStateListenerInterface::~AppStateListenerInterface() = default;
CompressedFileServiceInterface::~CompressedFileServiceInterface() = default;
CryptoServiceInterface::~CryptoServiceInterface() = default;
DataStoreInterface::~DataStoreInterface() = default;
DatabaseInterface::~DatabaseInterface() = default;
DatabaseServiceInterface::~DatabaseServiceInterface() = default;
DirectoryHandlerInterface::~DirectoryHandlerInterface() = default;
DisplayInformationInterface::~DisplayInformationInterface() = default;
EncodingServiceInterface::~EncodingServiceInterface() = default;
ExternalModuleInterface::~ExternalModuleInterface() = default;
ExternalModuleListenerInterface::~ExternalModuleListenerInterface() = default;
ExternalModuleServicesInterface::~ExternalModuleServicesInterface() = default;
FileHandlerInterface::~FileHandlerInterface() = default;
FileSystemServiceInterface::~FileSystemServiceInterface() = default;
FloatingButtonInterface::~FloatingButtonInterface() = default;
FloatingButtonListenerInterface::~FloatingButtonListenerInterface() = default;
FullScreenMessageUiInterface::~FullScreenMessageUiInterface() = default;
FullscreenListenerInterface::~FullscreenListenerInterface() = default;
HttpConnectionDataInterface::~HttpConnectionDataInterface() = default;
HttpConnectionInterface::~HttpConnectionInterface() = default;
JsonArray::~JsonArray() = default;
JsonObject::~JsonObject() = default;
JsonUtilityServiceInterface::~JsonUtilityServiceInterface() = default;
LocalStorageServiceInterface::~LocalStorageServiceInterface() = default;
LoggingServiceInterface::~LoggingServiceInterface() = default;
NetworkServiceInterface::~NetworkServiceInterface() = default;
PlatformServicesInterface::~PlatformServicesInterface() = default;
QueryResultInterface::~QueryResultInterface() = default;
RemoteFileInterface::~RemoteFileInterface() = default;
RemoteFileManagerServiceInterface::~RemoteFileManagerServiceInterface() = default;
StreamDecoderInterface::~StreamDecoderInterface() = default;
SystemInfoServiceInterface::~SystemInfoServiceInterface() = default;
TaskExecutorInterface::~TaskExecutorInterface() = default;
UIServiceInterface::~UIServiceInterface() = default;
URLServiceInterface::~URLServiceInterface() = default;
UuidInterface::~UuidInterface() = default;

}  // namespace Velmora
