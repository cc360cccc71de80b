#pragma once

#include <memory>

#include "QEXCore_iOS/QEXExtension.h"
#include "QEXCore_iOS/QEXExtensionApi.h"
#include "VelmoraCore/ExternalModuleServicesInterface.h"

namespace Velmora {

// A new API of that extension over those services; the extension is held until it unregisters.
std::shared_ptr<QEXExtensionApi> CreateQEXExtensionApiFromExternalModuleServicesInterface(
    const std::shared_ptr<QEXExtension>& extension,
    const std::shared_ptr<ExternalModuleServicesInterface>& services);

}  // namespace Velmora
