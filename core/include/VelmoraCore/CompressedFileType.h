#pragma once

#include <cstdint>

namespace Velmora {

enum class CompressedFileType : std::int32_t {
  Zip = 0,
};

}  // namespace Velmora
