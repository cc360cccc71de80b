#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Dates as HTTP writes them: "Tue, 05 Mar 2024 10:20:30 GMT", in English and universal time,
// whatever the locale. Safe from any thread.
namespace Velmora {

// Fractions are cut; what lies outside the years 1 to 9999 becomes their first or last second, and
// not-a-number the start of 1970.
std::string FormatRfc2822Date(double secondsSince1970);

// Seconds since 1970. The day may have one digit. Nothing for any other form, and for a day or time
// that does not exist. Which day of the week it names does not matter.
std::optional<std::int64_t> ParseRfc2822Date(std::string_view text);

}  // namespace Velmora
