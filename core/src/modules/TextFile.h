#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "VelmoraCore/FileSystemServiceInterface.h"

namespace Velmora::TextFile {

// A whole file as text. Nothing, and `problem` says why, when it is a directory, longer than
// `maxBytes`, or cannot be read.
std::optional<std::string> Read(FileSystemServiceInterface& files, const std::string& path,
                                std::int64_t maxBytes, std::string& problem);

}  // namespace Velmora::TextFile
