#pragma once

#include "HubObserver.h"
#include "Visit.h"

namespace Storefront {

// Prints what each of the SDK's thirteen services has done for the shop, and where its files are,
// as far as the hub's states and the files tell. False when one has left no trace.
bool PrintSummary(const HubObserver& observer, const HitNumbers& hits, int logLines);

}  // namespace Storefront
