#include "platform/linux/LinuxLocale.h"

#include <cstdlib>

namespace Platform {

std::string LinuxLocale::CurrentIdentifier() const {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG", "LC_CTYPE"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && value[0] != '\0') return value;
  }
  return {};
}

}  // namespace Platform
