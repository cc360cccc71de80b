#include "VelmoraCore/StringUtils.h"

#include <algorithm>

namespace Velmora {
namespace {

constexpr std::string_view kAfterScheme = "://";

// The classification functions of the standard library follow the locale; a scheme does not.
bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool IsSchemeByte(char byte) {
  return IsLetter(byte) || (byte >= '0' && byte <= '9') || byte == '+' || byte == '-' ||
         byte == '.';
}

bool IsBlankOrControl(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code <= 0x20U || code == 0x7FU;
}

}  // namespace

std::string StringUtils::Replace(std::string_view text, std::string_view needle,
                                 std::string_view replacement) {
  if (needle.empty()) {
    return std::string(text);
  }
  std::string result;
  result.reserve(text.size());
  std::size_t position = 0;
  for (std::size_t found = text.find(needle); found != std::string_view::npos;
       found = text.find(needle, position)) {
    result += text.substr(position, found - position);
    result += replacement;
    position = found + needle.size();
  }
  result += text.substr(position);
  return result;
}

bool StringUtils::StringIsUrl(std::string_view text) {
  const std::size_t schemeLength = text.find(kAfterScheme);
  if (schemeLength == std::string_view::npos || schemeLength == 0) {
    return false;
  }
  const std::string_view scheme = text.substr(0, schemeLength);
  const std::string_view rest = text.substr(schemeLength + kAfterScheme.size());
  return IsLetter(scheme.front()) && std::all_of(scheme.begin(), scheme.end(), IsSchemeByte) &&
         !rest.empty() && std::none_of(rest.begin(), rest.end(), IsBlankOrControl);
}

}  // namespace Velmora
