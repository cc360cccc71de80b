#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

// `raw`, which the system or the maker of the machine wrote, without the blanks and line ends
// around it. Nothing when that leaves nothing, or something that is not fit to be shown on a line
// and sent in a header: more than 128 bytes, control characters, or no UTF-8.
std::optional<std::string> PlainText(std::string_view raw);

}  // namespace Platform
