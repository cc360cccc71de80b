#pragma once

#include <string>
#include <string_view>

namespace Platform {

// Writes a new file beside `path`, sees it safely on the disk, and then gives it the name `path`.
// Nobody but its owner may read it. For a moment it has a hidden name of its own, for longer where
// the file system knows no files without a name; another process that removes it meanwhile only has
// it written once more. 0, or an errno value, with nothing left behind.
int ReplaceFile(const std::string& path, std::string_view bytes);

}  // namespace Platform
