#pragma once

#include <functional>

namespace Velmora {

// Hands `work` to the device's main queue. Work that the device does not take is dropped. May be
// called on any thread; never throws.
void OnMainQueue(std::function<void()> work) noexcept;

}  // namespace Velmora
