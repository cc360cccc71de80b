#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"

// The bytes under which user defaults keep a value. Functions of this header use no stack for
// nesting and may be called on any thread.
//
// A blob is the format's version (one byte, 1) and the content of a value of its type:
//   1 string, 4 data   length, then the bytes
//   2 number           storage type (4 bytes), then a 64-bit integer or, for a floating type, the
//                      bits of a double
//   3 boolean          one byte, 0 or 1
//   5 date             the bits of a double: seconds since 1970
//   6 array            count, then for each element its type (one byte) and content
//   7 dictionary       count, then for each entry the length and bytes of its key, and the value's
//                      type and content
// Lengths and counts take 4 bytes; all numbers are little-endian.
namespace Platform {

struct SqliteUserDefaultsBlob {
  std::int64_t type = 0;
  std::vector<std::uint8_t> bytes;
};

// No blob is longer.
inline constexpr std::size_t kMaximumUserDefaultsBlob = std::size_t{32} << 20;

// Nothing, with the reason in `objection`, for a value that user defaults do not take; an absent
// value is none of those.
std::optional<SqliteUserDefaultsBlob> EncodeUserDefaultsValue(const Value& value,
                                                              std::string_view& objection);

// Nothing for bytes that are not exactly one value, of that type.
std::optional<Value> DecodeUserDefaultsValue(std::int64_t type,
                                             std::span<const std::uint8_t> bytes);

}  // namespace Platform
