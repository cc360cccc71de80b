#include "services/system/NativeCryptoService.h"

#include <array>
#include <cstdint>

#include "services/system/AskHost.h"
#include "services/system/NativeUuid.h"

namespace Velmora {
namespace {

std::string LowerCaseHex(const std::array<std::uint8_t, 32>& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

}  // namespace

std::shared_ptr<UuidInterface> NativeCryptoService::GetRandomUuid() const {
  return std::make_shared<NativeUuid>();
}

std::string NativeCryptoService::GetSha256Hash(const std::string& input) const {
  return AskHost(
      [&](const Platform::Host& host) { return LowerCaseHex(host.digest->Sha256(input)); }, "");
}

std::shared_ptr<CryptoServiceInterface> CreateNativeCryptoService() {
  return std::make_shared<NativeCryptoService>();
}

}  // namespace Velmora
