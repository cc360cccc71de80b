#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/DatabaseInterface.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Opens and deletes the application's databases by name. May be called on any thread.
class VELMORA_CORE_API DatabaseServiceInterface : public virtual ObjectInterface {
 public:
  ~DatabaseServiceInterface() override;

  // The database of that name, made where it is missing; the same object for the same name as long
  // as the service lives. Throws an SdkError "database.open_error" when it cannot be opened.
  virtual std::shared_ptr<DatabaseInterface> OpenDatabase(const std::string& name) = 0;

  // Forgets the database of that name and deletes its file. False when that could not be done.
  virtual bool DeleteDatabase(const std::string& name) = 0;
};

}  // namespace Velmora
