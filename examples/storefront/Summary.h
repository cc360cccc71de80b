#pragma once

#include <QEXCore_iOS/Platform/Value.h>

#include "HubObserver.h"
#include "Visit.h"

namespace Storefront {

struct Traces {
  Platform::Value lifecycle;  // the context data of the start
  HitNumbers hits;
  int logLines = 0;
};

// Prints what each of the SDK's thirteen services has done for the shop, and where its files are,
// as far as the hub's states, these traces and the files tell. False when one has left no trace.
bool PrintSummary(const HubObserver& observer, const Traces& traces);

}  // namespace Storefront
