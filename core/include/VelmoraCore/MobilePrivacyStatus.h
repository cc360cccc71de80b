#pragma once

#include <cstdint>

namespace Velmora {

enum class MobilePrivacyStatus : std::int32_t {
  OptedIn = 0,
  OptedOut = 1,
  Unknown = 2,
};

}  // namespace Velmora
