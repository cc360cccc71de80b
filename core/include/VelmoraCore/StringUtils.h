#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "VelmoraCore/Export.h"

namespace Velmora {

// Helpers for texts. May be used on any thread.
class VELMORA_CORE_API StringUtils {
 public:
  StringUtils() = delete;

  // `text` with every `needle` replaced, found in one pass from left to right: what has been put in
  // is not searched again. An empty needle changes nothing.
  static std::string Replace(std::string_view text, std::string_view needle,
                             std::string_view replacement);

  // True for a scheme (a letter, then letters, digits, "+", "-" or "."), "://", and at least one
  // byte after it; no blank, control character or zero byte anywhere. Whether the rest makes sense
  // to a URL parser is not asked.
  static bool StringIsUrl(std::string_view text);

  // Decimal.
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool>) static std::string ToString(Integer value) {
    return std::to_string(value);
  }
};

}  // namespace Velmora
