#pragma once

#include <functional>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/PlatformServicesInterface.h"

// Calls of what is not the hub's own. None of them throws; what is thrown there gives one error
// line, save by the version and by the service, which are of no weight. May be used on any thread.
namespace Velmora {

void NameThisThread(const PlatformServicesInterface& services, const std::string& name);

void CallGuarded(const std::function<void()>& callback);

// A call of the module of that name because of `event`.
void CallModule(const std::string& name, const Event& event, const std::function<void()>& call);

// Empty where the module does not tell.
std::string NameOf(ExternalModuleInterface& module);
std::string VersionOf(ExternalModuleInterface& module);

}  // namespace Velmora
