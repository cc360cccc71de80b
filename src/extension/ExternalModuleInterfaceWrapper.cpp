#include "extension/ExternalModuleInterfaceWrapper.h"

#include <utility>

#include "extension/ExtensionApi.h"
#include "extension/ExtensionErrors.h"
#include "interop/StringConversion.h"

namespace Velmora {

ExternalModuleInterfaceWrapper::ExternalModuleInterfaceWrapper(
    const Platform::Class& extensionClass)
    : extensionClass_(extensionClass), extension_(extensionClass.alloc<QEXExtension>()) {}

std::string ExternalModuleInterfaceWrapper::GetModuleName() {
  return extension_ == nullptr ? std::string() : ToCppString(extension_->name());
}

std::string ExternalModuleInterfaceWrapper::GetModuleVersion() {
  return extension_ == nullptr ? std::string() : ToCppString(extension_->version());
}

void ExternalModuleInterfaceWrapper::OnRegister(
    const std::shared_ptr<ExternalModuleServicesInterface>& services) {
  if (extension_ == nullptr) return;
  const auto api = CreateQEXExtensionApiFromExternalModuleServicesInterface(extension_, services);
  api_ = api;
  const std::shared_ptr<QEXExtension> initialised = extension_->initWithApi(api);
  extension_ = initialised == nullptr ? nullptr : initialised->init();
  // The API and the instance would hold each other, and the name, for good.
  if (extension_ == nullptr) api->unregisterExtension();
}

void ExternalModuleInterfaceWrapper::OnUnexpectedError(SdkError& error) {
  if (extension_ == nullptr) return;
  extension_->unexpectedError(
      MakeExtensionError(GetQEXExtensionErrorFromErrorCodes(error.GetCode())));
}

void ExternalModuleInterfaceWrapper::OnUnregister() {
  if (extension_ == nullptr) return;
  // An override of onUnregister may forget the base class; the API and the instance must not hold
  // each other for good then.
  if (const std::shared_ptr<QEXExtensionApi> api = api_.lock()) api->LetGo();
  // Released also when the override throws: it is the last that the instance hears of.
  const std::shared_ptr<QEXExtension> leaving = std::exchange(extension_, nullptr);
  leaving->onUnregister();
}

std::shared_ptr<ExternalModuleInterface> CreateExternalModuleInterface(
    const Platform::Class& extensionClass) {
  return std::make_shared<ExternalModuleInterfaceWrapper>(extensionClass);
}

}  // namespace Velmora
