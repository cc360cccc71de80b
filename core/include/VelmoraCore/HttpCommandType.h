#pragma once

#include <cstdint>

namespace Velmora {

enum class HttpCommandType : std::int32_t {
  Get = 0,
  Post = 1,
};

}  // namespace Velmora
