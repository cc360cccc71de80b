#include "modules/AsciiText.h"

namespace Velmora::AsciiText {

std::string LowerCase(std::string text) {
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
  }
  return text;
}

}  // namespace Velmora::AsciiText
