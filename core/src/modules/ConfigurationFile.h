#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/Variant.h"

namespace Velmora::ConfigurationFile {

// Longer files are not read.
inline constexpr std::int64_t kMaxBytes = 16LL * 1024 * 1024;

// The members of the JSON object that the file holds. Nothing, with one error line that names the
// file and says what is wrong, when it cannot be had.
std::optional<VariantMap> Read(const PlatformServicesInterface& services, const std::string& path);

}  // namespace Velmora::ConfigurationFile
