#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "VelmoraCore/HttpConnectionDataInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// The body of a response, which it shares with the connection that made it.
class HttpConnectionData : public Object, public virtual HttpConnectionDataInterface {
 public:
  // `response` may be null: there is no body then.
  explicit HttpConnectionData(std::shared_ptr<const Platform::UrlResponse> response);

  std::uint64_t GetData(std::uint64_t maximum, std::uint8_t* buffer) override;
  std::uint64_t GetSize() override;

 private:
  const std::shared_ptr<const Platform::UrlResponse> response_;
};

}  // namespace Velmora
