#pragma once

// The codes that an SdkError can carry. Codes are compared as whole texts.
namespace Velmora::ErrorCodes {

inline constexpr const char* kStdException = "std.exception";
inline constexpr const char* kInvalidArgument = "std.logic_error.invalid_argument";

inline constexpr const char* kVariantWrongKind = "variant.wrong_kind";

inline constexpr const char* kJsonSerializationError = "json.serialization_error";
inline constexpr const char* kJsonKeyNotFound = "json.key_not_found";
inline constexpr const char* kJsonIndexNotFound = "json.index_not_found";
inline constexpr const char* kJsonObjectUnknown = "json.object_unknown";
inline constexpr const char* kJsonValueNotNumericType = "json.value_not_numeric_type";
inline constexpr const char* kJsonValueNotStringType = "json.value_not_string_type";
inline constexpr const char* kJsonValueNotBooleanType = "json.value_not_boolean_type";
inline constexpr const char* kJsonValueNotObjectType = "json.value_not_object_type";
inline constexpr const char* kJsonValueNotArrayType = "json.value_not_array_type";
inline constexpr const char* kJsonObjectIsNull = "json.jsonobject_is_null";

inline constexpr const char* kDatabaseOpenError = "database.open_error";
inline constexpr const char* kDatabaseQueryExecError = "database.query_exec_error";
inline constexpr const char* kDatabaseQueryResultAlreadyClosed =
    "database.queryresult_already_closed";
inline constexpr const char* kDatabaseQueryResultIndexError = "database.queryresult_index_error";

inline constexpr const char* kPlatformServicesMissingService = "platform_services.missing_service";

inline constexpr const char* kFileSystem = "filesystem";

inline constexpr const char* kCompressedFileReadFailed = "compressed-file.read-failed";
inline constexpr const char* kCompressedFileCorrupted = "compressed-file.corrupted";
inline constexpr const char* kCompressedFileWriteFailed = "compressed-file.write-failed";
inline constexpr const char* kCompressedFileInitFailed = "compressed-file.init-failed";
inline constexpr const char* kCompressedFileDecompressionFailed =
    "compressed-file.decompression-failed";
inline constexpr const char* kCompressedFileCloseFailed = "compressed-file.close-failed";

inline constexpr const char* kNetworkUnsupportedHttpCommandType =
    "network.unsupported_http_command_type";

inline constexpr const char* kRemoteFileManagerRequestFailed = "remotefilemanager.request_failed";
inline constexpr const char* kRemoteFileManagerCacheFailed = "remotefilemanager.cache_failed";

inline constexpr const char* kExternalModuleBadModuleName = "external_module.bad_module_name";
inline constexpr const char* kExternalModuleDuplicateModuleName = "external_module.dup_module_name";
inline constexpr const char* kExternalModuleEventTypeNotSupported =
    "external_module.event_type_not_supported";
inline constexpr const char* kExternalModuleEventSourceNotSupported =
    "external_module.event_source_not_supported";
inline constexpr const char* kExternalModuleEventDataNotSupported =
    "external_module.event_data_not_supported";
inline constexpr const char* kExternalModuleEventWasNull = "external_module.event_was_null";
inline constexpr const char* kExternalModuleListenerWasNull = "external_module.listener_was_null";
inline constexpr const char* kExternalModuleTooManyListeners = "external_module.too_many_listeners";
inline constexpr const char* kExternalModuleNotRegistered = "external_module.not_registered";

inline constexpr const char* kEventHubDisposed = "event_hub.disposed";
inline constexpr const char* kEventHubAlreadyStarted = "event_hub.already_started";
inline constexpr const char* kEventHubQueueFull = "event_hub.queue_full";

}  // namespace Velmora::ErrorCodes
