#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Export.h"

namespace Velmora {
class Core;
}

// The one core of the process, for authors of modules of the core; apps use QEXCore.
//
// The first call makes the services and the core and moves legacy data; it must return before other
// threads call. From then on any thread may call. Never null. Do not keep the pointer: ask again
// for each use. What the making of services, core or migration throws passes through.
QEXCORE_API std::shared_ptr<Velmora::Core> GetCore();
