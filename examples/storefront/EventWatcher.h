#pragma once

#include <functional>
#include <memory>
#include <string>

#include <VelmoraCore/Event.h>
#include <VelmoraCore/ExternalModuleInterface.h>

namespace Storefront {

// A module that hears every event of the hub and hands it to `onEvent`, on the module's own thread.
std::shared_ptr<Velmora::ExternalModuleInterface> MakeEventWatcher(
    std::function<void(const Velmora::Event&)> onEvent);

}  // namespace Storefront
