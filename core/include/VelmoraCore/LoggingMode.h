#pragma once

#include <cstdint>

namespace Velmora {

// How much is logged: each mode includes those before it.
enum class LoggingMode : std::int32_t {
  Error = 0,
  Warning = 1,
  Debug = 2,
  Trace = 3,
};

}  // namespace Velmora
