#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/DataStoreInterface.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hands out data stores. May be called on any thread; never fails.
class VELMORA_CORE_API LocalStorageServiceInterface : public virtual ObjectInterface {
 public:
  ~LocalStorageServiceInterface() override;

  // A new store object on every call; those of one name share their entries.
  virtual std::shared_ptr<DataStoreInterface> GetDataStore(const std::string& name) = 0;
};

}  // namespace Velmora
