#pragma once

#include "QEXCore_iOS/Platform/Locale.h"

namespace Platform {

// The locale of the user's language, as the environment names it at the call: LC_ALL, then
// LC_MESSAGES, then LANG; LC_CTYPE where none of them is set. The identifier has the system's form,
// "en_US.UTF-8", say.
class LinuxLocale final : public Locale {
 public:
  std::string CurrentIdentifier() const override;
};

}  // namespace Platform
