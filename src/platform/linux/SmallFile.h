#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace Platform {

// All bytes of the regular file at `path`. Nothing when it is missing, longer than `limit`, no
// regular file, or cannot be read; never waits as a pipe or a terminal would. Safe from any thread.
std::optional<std::string> ReadSmallFile(const std::string& path, std::size_t limit);

}  // namespace Platform
