#pragma once

#include <string>

#include <sys/types.h>

namespace Platform {

// Makes the directory at `path` and every missing parent, however many there are, each with `mode`
// less the process's mask. 0, also when it is already there, or an errno value: ENOTDIR when
// something else is in the way.
int CreateDirectories(const std::string& path, mode_t mode);

}  // namespace Platform
