#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Where log lines end. Called on any thread, several at once; lines never mix. Trace lines arrive
// through Debug. Nothing is filtered here: Log does that before.
class VELMORA_CORE_API LoggingServiceInterface : public virtual ObjectInterface {
 public:
  ~LoggingServiceInterface() override;

  virtual void Debug(const std::string& tag, const std::string& message) const = 0;
  virtual void Warning(const std::string& tag, const std::string& message) const = 0;
  virtual void Error(const std::string& tag, const std::string& message) const = 0;
};

}  // namespace Velmora
