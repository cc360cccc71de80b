#include "platform/linux/PlainText.h"

#include <algorithm>

#include "QEXCore_iOS/Platform/Utf8.h"

namespace Platform {
namespace {

constexpr std::size_t kMaximumSize = 128;

bool IsControl(char character) {
  return (character >= '\0' && character < ' ') || character == '\x7f';
}

}  // namespace

std::optional<std::string> PlainText(std::string_view raw) {
  constexpr std::string_view kAround = " \t\r\n";
  const std::size_t first = raw.find_first_not_of(kAround);
  if (first == std::string_view::npos) return std::nullopt;
  const std::string_view text = raw.substr(first, raw.find_last_not_of(kAround) - first + 1);
  const bool isFit = text.size() <= kMaximumSize && IsValidUtf8(text) &&
                     std::none_of(text.begin(), text.end(), IsControl);
  if (!isFit) return std::nullopt;
  return std::string(text);
}

}  // namespace Platform
