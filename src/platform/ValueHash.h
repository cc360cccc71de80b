#pragma once

#include <cstdint>
#include <string_view>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// Hashes for dictionary keys. They differ from process to process, so that nobody outside can
// choose keys that collide. Equal values have equal hashes; containers are told apart by size only.
std::uint64_t HashOfText(std::string_view text) noexcept;
std::uint64_t HashOf(const Value& value) noexcept;

}  // namespace Platform
