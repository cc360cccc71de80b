#pragma once

#include <string>

#include "hub/HubModule.h"

namespace Velmora {

// Will hold the rules; for now it says that there are none to be had.
class RulesModule final : public HubModule {
 public:
  std::string GetName() const override;
  void Attach(HubContext& hub) override;
};

}  // namespace Velmora
