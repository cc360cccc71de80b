#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/ExternalModuleServicesInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {

// A module that comes from outside the core and joins its event hub. Shared by the hub from
// registration until unregistration. Name and version are asked for on the registering thread; the
// other operations are called on the core's threads.
class VELMORA_CORE_API ExternalModuleInterface : public virtual ObjectInterface {
 public:
  ~ExternalModuleInterface() override;

  // The name under which the module joins, which no other module of the hub may have, and its
  // version for people. Both must be answerable before OnRegister.
  virtual std::string GetModuleName() = 0;
  virtual std::string GetModuleVersion() = 0;

  // The module has been accepted; `services` is its way to the hub and may be kept.
  virtual void OnRegister(const std::shared_ptr<ExternalModuleServicesInterface>& services) = 0;

  // Something went wrong on the module's behalf that it could not have been told otherwise.
  virtual void OnUnexpectedError(SdkError& error) = 0;

  // The module has left the hub. The last call.
  virtual void OnUnregister() = 0;
};

}  // namespace Velmora
