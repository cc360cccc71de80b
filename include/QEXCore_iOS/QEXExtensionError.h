#pragma once

#include <cstdint>

// The domain of every error that the SDK itself stores through an `error` argument. The codes are
// those of QEXExtensionError.
inline constexpr char QEXExtensionErrorDomain[] = "com.velmora.module_errors";

// Why a request about an extension or an event was refused.
enum class QEXExtensionError : std::int64_t {
  unknown = 0,
  badModuleName = 1,
  duplicateModuleName = 2,
  eventTypeNotSupported = 3,
  eventSourceNotSupported = 4,
  eventDataNotSupported = 5,
  classIsNotAnExtension = 6,
  eventWasNull = 7,
};
