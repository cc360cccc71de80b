#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/UrlSession.h"

// What may go out in a request. Safe from any thread.
namespace Platform {

// Why `request` cannot be sent, whatever the server; nothing when it can. `allowsCleartext` lets
// "http" pass.
std::optional<Error> RefusalOf(const UrlRequest& request, bool allowsCleartext);

// True for a URL that begins with "http:", in whatever case.
bool IsCleartextUrl(std::string_view url);

// True for the headers that belong to the connection, not to its user.
bool IsConnectionHeader(std::string_view name);

// True when both are the same header's name: case does not matter.
bool IsSameHeader(std::string_view left, std::string_view right);

// A header's name in its usual spelling: "etag" gives "ETag", "x-request-id" "X-Request-Id".
std::string UsualHeaderName(std::string_view name);

}  // namespace Platform
