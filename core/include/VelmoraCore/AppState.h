#pragma once

#include <cstdint>

namespace Velmora {

enum class AppState : std::int32_t {
  Foreground = 0,
  Background = 1,
};

}  // namespace Velmora
