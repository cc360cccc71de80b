#pragma once

#include <string>

// Bodies as servers send them under a content coding.
namespace TestSupport {

std::string Gzip(const std::string& text);

// "deflate", as its standard has it, in zlib's wrapping; and bare, as some servers send it.
std::string Deflate(const std::string& text);
std::string BareDeflate(const std::string& text);

std::string Brotli(const std::string& text);

}  // namespace TestSupport
