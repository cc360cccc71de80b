#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/QEXExtensionError.h"

// How the core's errors become the public ones. All may be called on any thread.
namespace Velmora {

// The public code of a core error code, which is compared as a whole. Unknown for any text that is
// not in the table.
QEXExtensionError GetQEXExtensionErrorFromErrorCodes(const std::string& code);

// The platform error of that code.
Platform::Error MakeExtensionError(QEXExtensionError code);

// Stores that error where there is a place for it.
void StoreExtensionError(QEXExtensionError code, Platform::Error* error);

}  // namespace Velmora
