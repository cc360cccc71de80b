#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/URLServiceInterface.h"

namespace Velmora {

// Takes URLs apart with the device's parser; parts come as they stand in the URL. May be called on
// any thread.
class NativeUrlService final : public Object, public virtual URLServiceInterface {
 public:
  NativeUrlService();

  std::string GetQuery(const std::string& url) const override;
  std::string GetPath(const std::string& url) const override;
  std::string GetScheme(const std::string& url) const override;
  std::string GetHost(const std::string& url) const override;
};

std::shared_ptr<URLServiceInterface> CreateNativeUrlService();

}  // namespace Velmora
