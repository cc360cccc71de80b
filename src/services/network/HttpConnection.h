#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "VelmoraCore/HttpConnectionInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A response that a URL session delivered.
class HttpConnection : public Object, public virtual HttpConnectionInterface {
 public:
  // `response` may be null: status 0, no headers, no body.
  explicit HttpConnection(std::shared_ptr<const Platform::UrlResponse> response);

  std::string GetResponse() override;
  std::shared_ptr<HttpConnectionDataInterface> GetResponseRawData() override;
  std::int32_t GetResponseCode() override;
  std::string GetResponseMessage() override;

  // `name` in the usual spelling, "ETag" say, which is how the session gives it.
  std::string GetResponsePropertyValue(const std::string& name) override;
  void Close() override;

 private:
  const std::shared_ptr<const Platform::UrlResponse> response_;
};

}  // namespace Velmora
