#pragma once

#include <string_view>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// True when `bytes` are well-formed UTF-8 throughout: no stray or missing continuation byte, no
// over-long form, no surrogate, nothing above U+10FFFF. Zero bytes are characters like any other.
// May be called on any thread.
QEXCORE_API bool IsValidUtf8(std::string_view bytes) noexcept;

// The length of the well-formed character at the start of `bytes` (1 to 4), or 0 when there is
// none or `bytes` is empty.
QEXCORE_API std::size_t Utf8CharacterLength(std::string_view bytes) noexcept;

}  // namespace Platform
