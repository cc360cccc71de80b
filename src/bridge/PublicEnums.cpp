#include "bridge/PublicEnums.h"

namespace Velmora {

MobilePrivacyStatus ToMobilePrivacyStatus(QEXMobilePrivacyStatus status) {
  switch (status) {
    case QEXMobilePrivacyStatus::optedIn:
      return MobilePrivacyStatus::OptedIn;
    case QEXMobilePrivacyStatus::optedOut:
      return MobilePrivacyStatus::OptedOut;
    case QEXMobilePrivacyStatus::unknown:
      break;
  }
  return MobilePrivacyStatus::Unknown;
}

QEXMobilePrivacyStatus ToQEXMobilePrivacyStatus(MobilePrivacyStatus status) {
  switch (status) {
    case MobilePrivacyStatus::OptedIn:
      return QEXMobilePrivacyStatus::optedIn;
    case MobilePrivacyStatus::OptedOut:
      return QEXMobilePrivacyStatus::optedOut;
    case MobilePrivacyStatus::Unknown:
      break;
  }
  return QEXMobilePrivacyStatus::unknown;
}

LoggingMode ToLoggingMode(QEXMobileLogLevel level) {
  switch (level) {
    case QEXMobileLogLevel::warning:
      return LoggingMode::Warning;
    case QEXMobileLogLevel::debug:
      return LoggingMode::Debug;
    case QEXMobileLogLevel::trace:
      return LoggingMode::Trace;
    case QEXMobileLogLevel::error:
      break;
  }
  return LoggingMode::Error;
}

}  // namespace Velmora
