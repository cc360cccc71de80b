#pragma once

#include <cstdint>
#include <string>

namespace Platform {

// What can be chosen of the default host's parts.
struct HostOptions {
  // A PEM file of certificate authorities to trust beside the system's; empty for none. A file that
  // cannot be read adds none, and the errors of refused certificates say so.
  std::string extraTrustFile;

  // The largest body, decoded, that a response may have, in bytes. Beyond it the request fails.
  std::uint64_t largestResponseBody = std::uint64_t{512} << 20;
};

}  // namespace Platform
