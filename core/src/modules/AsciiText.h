#pragma once

#include <string>

namespace Velmora::AsciiText {

// With "A" to "Z" in lower case, whatever the locale; other bytes stay.
std::string LowerCase(std::string text);

}  // namespace Velmora::AsciiText
