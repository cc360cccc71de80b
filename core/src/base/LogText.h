#pragma once

#include <cstddef>
#include <string>

// Anybody's text on its way into a log line.
namespace Velmora::LogText {

// The text without control characters, since a log line is one line, and cut to `longest` bytes.
std::string Readable(const std::string& text, std::size_t longest = 100);

}  // namespace Velmora::LogText
