#pragma once

#include <cstdint>
#include <string>

namespace Velmora {

// The standard phrase for an HTTP status code (RFC 9110), in English; for a code that has none,
// that of its class, and empty beyond the classes. Safe from any thread.
std::string HttpReasonPhrase(std::int32_t statusCode);

}  // namespace Velmora
