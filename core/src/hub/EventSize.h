#pragma once

#include <cstddef>

#include "VelmoraCore/Event.h"

namespace Velmora {

// About how many bytes of memory the event and its data take. However deep they are nested, no
// stack is used for it. May be used on any thread.
std::size_t SizeOf(const Event& event);

}  // namespace Velmora
