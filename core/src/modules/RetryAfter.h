#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace Velmora {

// How long a server asks to be left alone, by its header "Retry-After": a number of seconds or an
// HTTP date, which is compared with `now`. Zero for a date in the past, a day for anything longer.
// Nothing when the text is neither.
std::optional<std::chrono::seconds> ParseRetryAfter(const std::string& text,
                                                    std::chrono::system_clock::time_point now);

}  // namespace Velmora
