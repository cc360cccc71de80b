#pragma once

#include <memory>
#include <vector>

#include "hub/HubModule.h"

namespace Velmora {

// The modules that every core has, new ones on every call.
std::vector<std::unique_ptr<HubModule>> CreateCoreModules();

}  // namespace Velmora
