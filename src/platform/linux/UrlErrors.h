#pragma once

#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/UrlSession.h"

namespace Platform {

Error MakeUrlError(UrlFailure failure, std::string description);

// The error for a transfer that libcurl ended with `curlCode`, described by its words, `detail`
// where it has any.
Error UrlErrorOfCurl(int curlCode, std::string_view detail);

}  // namespace Platform
