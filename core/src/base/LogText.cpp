#include "base/LogText.h"

#include <algorithm>

namespace Velmora::LogText {
namespace {

bool IsControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

bool ContinuesACharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string Readable(const std::string& text, std::size_t longest) {
  std::size_t length = std::min(text.size(), longest);
  while (length > 0 && length < text.size() && ContinuesACharacter(text[length])) --length;
  std::string readable = text.substr(0, length);
  std::replace_if(readable.begin(), readable.end(), IsControl, '?');
  return readable;
}

}  // namespace Velmora::LogText
