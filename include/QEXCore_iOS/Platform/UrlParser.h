#pragma once

#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The parts of a URL, as they stand in it, still percent-encoded; a part that is missing is empty.
struct UrlComponents {
  std::string scheme;  // without ":"
  std::string host;    // without the brackets of an IP literal
  std::string path;
  std::string query;  // without "?"
};

// Takes URLs apart (RFC 3986). Safe from any thread.
class QEXCORE_API UrlParser {
 public:
  virtual ~UrlParser();

  // Nothing for an empty text, for one that is no URI reference, and for a port beyond 65535.
  virtual std::optional<UrlComponents> Parse(const std::string& url) const = 0;
};

}  // namespace Platform
