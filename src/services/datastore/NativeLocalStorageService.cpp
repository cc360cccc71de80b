#include "services/datastore/NativeLocalStorageService.h"

#include "services/datastore/NativeDataStore.h"

namespace Velmora {

std::shared_ptr<DataStoreInterface> NativeLocalStorageService::GetDataStore(
    const std::string& name) {
  return std::make_shared<NativeDataStore>(name);
}

std::shared_ptr<LocalStorageServiceInterface> CreateNativeLocalStorageService() {
  return std::make_shared<NativeLocalStorageService>();
}

}  // namespace Velmora
