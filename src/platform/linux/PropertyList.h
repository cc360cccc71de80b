#pragma once

#include <string_view>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

inline constexpr std::size_t kMaximumPropertyListSize = 1'048'576;  // bytes
inline constexpr int kMaximumPropertyListDepth = 64;

// The value that a property list, XML or binary, spells. Absent when it is neither, is damaged,
// is larger or nests deeper than the limits above, or would unfold to far more than it holds.
// Safe from any thread.
//
// Integers become SInt64 numbers, reals Float64 ones, dates Platform::Date objects, and archive
// references (UIDs) SInt64 numbers. Strings that are no UTF-8 are left out, as are the entries
// and elements that they belong to.
Value ParsePropertyList(std::string_view bytes);

}  // namespace Platform
