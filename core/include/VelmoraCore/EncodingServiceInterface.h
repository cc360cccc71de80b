#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Text encodings. May be called on any thread; never throws.
class VELMORA_CORE_API EncodingServiceInterface : public virtual ObjectInterface {
 public:
  ~EncodingServiceInterface() override;

  // The UTF-8 text that `encoded` spells in standard base64. Empty when `encoded` is empty, is not
  // strict base64 with padding, or does not spell valid UTF-8.
  virtual std::string Base64Decode(const std::string& encoded) const = 0;
};

}  // namespace Velmora
