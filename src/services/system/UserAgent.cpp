#include "services/system/UserAgent.h"

#include <algorithm>

namespace Velmora {

std::string FormatUserAgent(const std::string& model, std::string systemVersion,
                            const std::string& localeName) {
  std::replace(systemVersion.begin(), systemVersion.end(), '.', '_');
  const std::string locale = localeName.empty() ? "Unknown" : localeName;
  return "Mozilla/5.0 (" + model + "; CPU OS " + systemVersion + " like Mac OS X; " + locale + ")";
}

}  // namespace Velmora
