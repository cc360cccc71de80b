#pragma once

#include <cstdint>

namespace Velmora {

enum class JsonType : std::int32_t {
  Number = 0,
  Boolean = 1,
  String = 2,
  Array = 3,
  Object = 4,
  Null = 5,
};

}  // namespace Velmora
