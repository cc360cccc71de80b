#pragma once

#include <string_view>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The platform's log. Safe from any thread; lines of several threads do not mix. Never throws.
class QEXCORE_API SystemLog {
 public:
  virtual ~SystemLog();

  // Writes one line; the log puts time stamp and process before it and the line end behind it.
  // Line breaks inside the text are written as they stand, zero bytes and all.
  virtual void Write(std::string_view line) = 0;
};

}  // namespace Platform
