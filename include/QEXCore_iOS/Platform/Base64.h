#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// Base64 with the standard alphabet and padding (RFC 4648, section 4). Safe from any thread.
class QEXCORE_API Base64 {
 public:
  virtual ~Base64();

  // The decoded bytes. Nothing for a character outside the alphabet (blanks and line breaks too),
  // a missing or misplaced padding, or a length that is no multiple of four.
  virtual std::optional<std::string> Decode(std::string_view text) const = 0;

  virtual std::string Encode(std::string_view bytes) const = 0;
};

}  // namespace Platform
