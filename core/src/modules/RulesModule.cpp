#include "modules/RulesModule.h"

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"

namespace Velmora {

std::string RulesModule::GetName() const { return EventTypes::kRules; }

void RulesModule::Attach(HubContext& hub) {
  hub.Listen(EventTypes::kRules, EventSources::kRequest, [](const std::shared_ptr<Event>&) {
    Log::Debug("Rules", "there is no source of rules yet; nothing is downloaded");
  });
}

}  // namespace Velmora
