#pragma once

#include <cstdint>

namespace Velmora {

enum class VisitorIdAuthenticationState : std::int32_t {
  Unknown = 0,
  Authenticated = 1,
  LoggedOut = 2,
};

}  // namespace Velmora
