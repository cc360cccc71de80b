#pragma once

#include <string>

#include "VelmoraCore/Expected.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "modules/RuleSet.h"

namespace Velmora {

// Rules that lie unpacked on the device, ready to serve.
struct InstalledRules {
  std::string folder;  // its name below RulesFolder::Root
  std::string sha256;  // of the archive that they came in
  RuleSet rules;
};

// Where unpacked rules lie: each archive in a folder of its own, below one folder of the cache
// directory. May be used on any thread.
namespace RulesFolder {

std::string Root(const PlatformServicesInterface& services);

// Empty when `folder` is no name that MakeFresh gives.
std::string PathOf(const PlatformServicesInterface& services, const std::string& folder);

// The name of a folder that there has not been yet.
std::string FreshName(const PlatformServicesInterface& services);

// Reads the rules that lie in a folder; a rule that needs a file which is not there is left out,
// with one warning line. An error says why there are none.
Expected<InstalledRules, std::string> Load(const PlatformServicesInterface& services,
                                           const std::string& folder, const std::string& sha256);

// Deletes a folder, or all but one. What cannot be deleted gives one warning line.
void Delete(const PlatformServicesInterface& services, const std::string& folder);
void DeleteAllBut(const PlatformServicesInterface& services, const std::string& folder);

}  // namespace RulesFolder

}  // namespace Velmora
