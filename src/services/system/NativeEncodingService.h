#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/EncodingServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Base64 through the device. A zero byte ends the input, and the decoded text, where it stands. May
// be called on any thread.
class NativeEncodingService final : public Object, public virtual EncodingServiceInterface {
 public:
  std::string Base64Decode(const std::string& encoded) const override;
};

std::shared_ptr<EncodingServiceInterface> CreateNativeEncodingService();

}  // namespace Velmora
