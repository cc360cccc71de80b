#pragma once

#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/Class.h"
#include "QEXCore_iOS/QEXExtension.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Presents an extension to the core as one of its modules. Takes no locks: the core calls one
// operation at a time. Without an instance, of a class that gives none or once it has left, every
// operation does nothing and texts are empty.
class ExternalModuleInterfaceWrapper : public Object, public virtual ExternalModuleInterface {
 public:
  // Allocates an instance; what its constructor throws passes through.
  explicit ExternalModuleInterfaceWrapper(const Platform::Class& extensionClass);

  std::string GetModuleName() override;
  std::string GetModuleVersion() override;

  // Initialises the instance, its API in place. One whose init returns nothing leaves the hub.
  void OnRegister(const std::shared_ptr<ExternalModuleServicesInterface>& services) override;
  void OnUnexpectedError(SdkError& error) override;
  void OnUnregister() override;

 private:
  const Platform::Class extensionClass_;
  std::shared_ptr<QEXExtension> extension_;
  std::weak_ptr<QEXExtensionApi> api_;
};

std::shared_ptr<ExternalModuleInterface> CreateExternalModuleInterface(
    const Platform::Class& extensionClass);

}  // namespace Velmora
