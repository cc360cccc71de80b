#pragma once

#include <type_traits>
#include <utility>

#include "QEXCore_iOS/Platform/Host.h"

namespace Velmora {

// What `ask(host)` gives for the installed device, or `fallback` when asking throws: the services
// of this folder do not let a failing device throw to the core.
template <class Ask>
auto AskHost(Ask&& ask, std::invoke_result_t<Ask, const Platform::Host&> fallback) noexcept {
  try {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): does not see it returned
    return std::forward<Ask>(ask)(*Platform::Host::Current());
  } catch (...) {
    return fallback;
  }
}

}  // namespace Velmora
