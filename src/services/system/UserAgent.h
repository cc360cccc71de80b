#pragma once

#include <string>

namespace Velmora {

// "Mozilla/5.0 (<model>; CPU OS <version> like Mac OS X; <locale>)", with "_" for each "." of the
// version and "Unknown" for an empty locale name.
std::string FormatUserAgent(const std::string& model, std::string systemVersion,
                            const std::string& localeName);

}  // namespace Velmora
