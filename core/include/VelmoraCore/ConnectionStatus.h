#pragma once

#include <cstdint>

namespace Velmora {

enum class ConnectionStatus : std::int32_t {
  Connected = 0,
  NotConnected = 1,
  Unknown = 2,
};

}  // namespace Velmora
