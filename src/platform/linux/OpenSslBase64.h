#pragma once

#include "QEXCore_iOS/Platform/Base64.h"

namespace Platform {

// Bits of the last character that lie beyond the last byte are not looked at, as in most decoders:
// "aGk=" and "aGl=" both give "hi".
class OpenSslBase64 final : public Base64 {
 public:
  std::optional<std::string> Decode(std::string_view text) const override;
  std::string Encode(std::string_view bytes) const override;
};

}  // namespace Platform
