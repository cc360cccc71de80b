#include "platform/linux/FileErrors.h"

#include <array>
#include <climits>
#include <cstdio>

#include <string.h>

#include "QEXCore_iOS/Platform/Utf8.h"

namespace Platform {
namespace {

bool IsControlCharacter(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
}

std::string Printable(std::string_view path) {
  constexpr std::size_t kLongest = PATH_MAX;
  std::string text;
  text.reserve(path.size() < kLongest ? path.size() : kLongest);
  for (std::string_view rest = path; !rest.empty();) {
    if (text.size() >= kLongest) return text + "...";
    const std::size_t length = Utf8CharacterLength(rest);
    if (length == 0 || IsControlCharacter(rest.front())) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02x",
                    static_cast<unsigned>(static_cast<unsigned char>(rest.front())));
      text += escape.data();
      rest.remove_prefix(1);
    } else {
      text += rest.substr(0, length);
      rest.remove_prefix(length);
    }
  }
  return text;
}

}  // namespace

std::string DescribeFileFailure(std::string_view action, std::string_view path,
                                std::string_view reason) {
  std::string text = "Cannot ";
  text += action;
  text += " \"";
  text += Printable(path);
  text += "\": ";
  text += reason;
  text += '.';
  return text;
}

std::string_view ReasonOf(int errorNumber) {
  const char* reason = ::strerrordesc_np(errorNumber);
  return reason != nullptr ? reason : "unknown reason";
}

void WriteFileError(Error* error, std::string_view action, std::string_view path, int errorNumber,
                    std::string_view reason) {
  if (error == nullptr) return;
  if (reason.empty()) reason = ReasonOf(errorNumber);
  *error = Error(kFileErrorDomain, errorNumber, DescribeFileFailure(action, path, reason));
}

}  // namespace Platform
