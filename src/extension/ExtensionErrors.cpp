#include "extension/ExtensionErrors.h"

#include <algorithm>
#include <array>

#include "VelmoraCore/ErrorCodes.h"

namespace Velmora {
namespace {

struct Row {
  const char* coreCode;
  QEXExtensionError publicCode;
};

constexpr std::array<Row, 6> kTable{{
    {ErrorCodes::kExternalModuleBadModuleName, QEXExtensionError::badModuleName},
    {ErrorCodes::kExternalModuleDuplicateModuleName, QEXExtensionError::duplicateModuleName},
    {ErrorCodes::kExternalModuleEventTypeNotSupported, QEXExtensionError::eventTypeNotSupported},
    {ErrorCodes::kExternalModuleEventSourceNotSupported,
     QEXExtensionError::eventSourceNotSupported},
    {ErrorCodes::kExternalModuleEventDataNotSupported, QEXExtensionError::eventDataNotSupported},
    {ErrorCodes::kExternalModuleEventWasNull, QEXExtensionError::eventWasNull},
}};

}  // namespace

QEXExtensionError GetQEXExtensionErrorFromErrorCodes(const std::string& code) {
  const auto* const row = std::find_if(kTable.begin(), kTable.end(), [&](const Row& candidate) {
    return code == candidate.coreCode;
  });
  return row == kTable.end() ? QEXExtensionError::unknown : row->publicCode;
}

Platform::Error MakeExtensionError(QEXExtensionError code) {
  return {QEXExtensionErrorDomain, static_cast<std::int64_t>(code)};
}

void StoreExtensionError(QEXExtensionError code, Platform::Error* error) {
  if (error != nullptr) *error = MakeExtensionError(code);
}

}  // namespace Velmora
