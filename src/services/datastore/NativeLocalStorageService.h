#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/LocalStorageServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hands out data stores over the platform's user defaults. Keeps nothing; safe from any thread.
class NativeLocalStorageService final : public Object, public virtual LocalStorageServiceInterface {
 public:
  // A new store on every call. It keeps the user defaults that are current at this moment: those of
  // the application group when one is set and its suite opens, else the application's own.
  std::shared_ptr<DataStoreInterface> GetDataStore(const std::string& name) override;
};

std::shared_ptr<LocalStorageServiceInterface> CreateNativeLocalStorageService();

}  // namespace Velmora
