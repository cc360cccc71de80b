#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The user's locale. Safe from any thread.
class QEXCORE_API Locale {
 public:
  virtual ~Locale();

  // The identifier of the locale in force now, "en_US", say; empty when the user chose none.
  virtual std::string CurrentIdentifier() const = 0;
};

}  // namespace Platform
