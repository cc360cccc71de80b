#pragma once

#include <cstdint>
#include <string>

#include "VelmoraCore/Expected.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "modules/RulesFolder.h"

// A downloaded archive of rules on its way to a folder of its own. May be used on any thread; each
// operation takes as long as the device does. An error is a text that says what is wrong; nothing
// is left behind then.
namespace Velmora::RulesArchive {

// Longer archives are not read.
inline constexpr std::uint32_t kMaxBytes = 16 * 1024 * 1024;

struct Bytes {
  std::string bytes;
};

// The archive's bytes, if their SHA-256 is the one that is wanted, in lower-case hexadecimal
// digits. To be asked before anything is made of them: they may come from anybody.
Expected<Bytes, std::string> ReadChecked(const PlatformServicesInterface& services,
                                         const std::string& path, const std::string& sha256);

// Unpacks an archive that has been checked.
Expected<InstalledRules, std::string> Install(const PlatformServicesInterface& services,
                                              const Bytes& archive, const std::string& sha256);

}  // namespace Velmora::RulesArchive
