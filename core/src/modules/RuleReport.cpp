#include "modules/RuleReport.h"

#include <memory>
#include <utility>

#include "VelmoraCore/EventNames.h"

namespace Velmora {

RuleReport::RuleReport(HubContext& hub, std::string rule, std::string consequence)
    : hub_(&hub),
      wayHome_(hub.WayHome()),
      rule_(std::move(rule)),
      consequence_(std::move(consequence)) {}

void RuleReport::Tell(const char* outcome) const {
  EventData data;
  data.PutString(EventKeys::kRule, rule_);
  data.PutString(EventKeys::kConsequence, consequence_);
  data.PutString(EventKeys::kOutcome, outcome);
  wayHome_([hub = hub_,
            event = std::make_shared<Event>("rule", EventTypes::kRules, EventSources::kResponse,
                                            std::make_shared<EventData>(std::move(data)))] {
    hub->Dispatch(event);
  });
}

}  // namespace Velmora
