#pragma once

#include <cstdint>

namespace Velmora {

enum class CompressionMethod : std::int32_t {
  Stored = 0,
  Deflate = 1,
};

}  // namespace Velmora
