#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A downloaded file in the cache. May be used on any thread; the file itself may be gone by then.
class VELMORA_CORE_API RemoteFileInterface : public virtual ObjectInterface {
 public:
  ~RemoteFileInterface() override;

  // The plain path of the local file, without a scheme.
  virtual std::string ToUri() = 0;

  // The whole file as text, read on the first call and kept; empty when it cannot be read or is not
  // UTF-8.
  virtual std::string ReadJsonStringFromFile() = 0;
};

}  // namespace Velmora
