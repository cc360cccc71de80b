#include "interop/AppInfo.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"

namespace Velmora {

void AppInfo::SetAppGroup(std::optional<std::string> appGroup) { Group() = std::move(appGroup); }

const std::optional<std::string>& AppInfo::GetAppGroup() { return Group(); }

std::shared_ptr<Platform::UserDefaults> AppInfo::GetUserDefaults() {
  const std::shared_ptr<Platform::UserDefaultsProvider> provider =
      Platform::Host::Current()->userDefaults;
  const std::optional<std::string>& group = GetAppGroup();
  if (group && provider->SupportsSuites()) {
    if (auto suite = provider->OpenSuite(*group)) return suite;
  }
  return provider->Standard();
}

std::optional<std::string>& AppInfo::Group() {
  // Never destroyed: threads of the core may ask until the process ends.
  static auto* group = new std::optional<std::string>;
  return *group;
}

}  // namespace Velmora
