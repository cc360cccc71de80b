#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/HttpConnectionDataInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A response that has arrived, whatever its status. Never changes; may be read on any thread.
class VELMORA_CORE_API HttpConnectionInterface : public virtual ObjectInterface {
 public:
  ~HttpConnectionInterface() override;

  // The body as text; empty without a body or when it is not valid UTF-8.
  virtual std::string GetResponse() = 0;

  // A new object over the same body; its bytes outlive the connection.
  virtual std::shared_ptr<HttpConnectionDataInterface> GetResponseRawData() = 0;

  // The HTTP status code, and a phrase for people that explains it.
  virtual std::int32_t GetResponseCode() = 0;
  virtual std::string GetResponseMessage() = 0;

  // The response header `name`; empty when there is none.
  virtual std::string GetResponsePropertyValue(const std::string& name) = 0;

  // Does nothing: the response goes with the object.
  virtual void Close() = 0;
};

}  // namespace Velmora
