#pragma once

#include "QEXCore_iOS/QEXCore.h"
#include "VelmoraCore/LoggingMode.h"
#include "VelmoraCore/MobilePrivacyStatus.h"

// The public enumerations and those of the core. Every value is mapped, also one that is none of
// the enumerators.
namespace Velmora {

MobilePrivacyStatus ToMobilePrivacyStatus(QEXMobilePrivacyStatus status);
QEXMobilePrivacyStatus ToQEXMobilePrivacyStatus(MobilePrivacyStatus status);
LoggingMode ToLoggingMode(QEXMobileLogLevel level);

}  // namespace Velmora
