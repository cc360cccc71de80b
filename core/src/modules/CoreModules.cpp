#include "modules/CoreModules.h"

#include "modules/AnalyticsModule.h"
#include "modules/ConfigurationModule.h"
#include "modules/IdentityModule.h"
#include "modules/LifecycleModule.h"
#include "modules/RulesModule.h"

namespace Velmora {

std::vector<std::unique_ptr<HubModule>> CreateCoreModules() {
  std::vector<std::unique_ptr<HubModule>> modules;
  // The others ask for the configuration's state, so it comes first.
  modules.push_back(std::make_unique<ConfigurationModule>());
  modules.push_back(std::make_unique<IdentityModule>());
  modules.push_back(std::make_unique<LifecycleModule>());
  modules.push_back(std::make_unique<AnalyticsModule>());
  modules.push_back(std::make_unique<RulesModule>());
  return modules;
}

}  // namespace Velmora
