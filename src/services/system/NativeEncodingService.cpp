#include "services/system/NativeEncodingService.h"

#include <optional>
#include <string_view>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "interop/StringConversion.h"
#include "services/system/AskHost.h"

namespace Velmora {

std::string NativeEncodingService::Base64Decode(const std::string& encoded) const {
  const std::optional<std::string_view> text = ToNSStringView(encoded);
  if (!text) return {};
  return AskHost(
      [&](const Platform::Host& host) {
        const std::optional<std::string> decoded = host.base64->Decode(*text);
        const bool isText = decoded && Platform::IsValidUtf8(*decoded);
        return isText ? ToCppString(decoded) : std::string();
      },
      "");
}

std::shared_ptr<EncodingServiceInterface> CreateNativeEncodingService() {
  return std::make_shared<NativeEncodingService>();
}

}  // namespace Velmora
