#pragma once

#include <string>

#include "hub/HubModule.h"

namespace Velmora {

// Tells the hub, in an event of type "rules" and source "response", what became of a consequence.
// May be kept, and used on any thread, for as long as one likes.
class RuleReport {
 public:
  RuleReport(HubContext& hub, std::string rule, std::string consequence);

  // One of EventOutcomes.
  void Tell(const char* outcome) const;

 private:
  HubContext* hub_;  // for the way home only, which is closed once the hub has gone
  HubContext::Poster wayHome_;
  std::string rule_;
  std::string consequence_;
};

}  // namespace Velmora
