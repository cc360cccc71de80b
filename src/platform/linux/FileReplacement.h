#pragma once

#include <string>
#include <string_view>

namespace Platform {

// Writes a new file beside `path`, under a hidden name of its own, sees it safely on the disk, and
// then gives it the name `path`. Nobody but its owner may read it. 0, or an errno value, with
// nothing left behind.
int ReplaceFile(const std::string& path, std::string_view bytes);

}  // namespace Platform
