#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Takes URLs apart. May be called on any thread; never throws. Each operation gives an empty text
// for a URL without that component, and for a text that is no valid URL, which is logged at debug
// level.
class VELMORA_CORE_API URLServiceInterface : public virtual ObjectInterface {
 public:
  ~URLServiceInterface() override;

  // Without the leading "?".
  virtual std::string GetQuery(const std::string& url) const = 0;

  virtual std::string GetPath(const std::string& url) const = 0;

  // Without the ":".
  virtual std::string GetScheme(const std::string& url) const = 0;

  virtual std::string GetHost(const std::string& url) const = 0;
};

}  // namespace Velmora
