#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/UserDefaults.h"

// Reads user defaults the way the platform's typed getters do: a value of a neighbouring type is
// converted, and what cannot be converted reads as missing. May be used on any thread; never
// throws.
namespace Velmora {

// A string as it is; a number as its shortest decimal text; a boolean as "1" or "0"; nothing for
// anything else.
std::optional<std::string> StringForKey(const Platform::UserDefaults& defaults,
                                        const std::string& key);

// A boolean as it is; a number is true unless it is zero. A string is true when, behind leading
// blanks, a sign and zeros, it goes on with Y, T (either case) or a digit from 1 to 9, as in "YES",
// "true" and "1". False for anything else.
bool BoolForKey(const Platform::UserDefaults& defaults, const std::string& key);

// A number, cut to an integer; a boolean as 1 or 0; the decimal integer that a string begins with
// behind leading blanks, the nearest extreme where it does not fit. 0 for anything else.
std::int64_t IntegerForKey(const Platform::UserDefaults& defaults, const std::string& key);

// The seconds since 1970-01-01 UTC of a date, cut towards zero; 0 for anything else.
std::int64_t DateSecondsForKey(const Platform::UserDefaults& defaults, const std::string& key);

}  // namespace Velmora
