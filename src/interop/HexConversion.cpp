#include "interop/HexConversion.h"

#include <string_view>

#include "interop/StringConversion.h"

namespace Velmora {

std::vector<std::uint8_t> HexToBin(const char* characters, std::size_t length) {
  std::string_view text(characters, length);
  text = text.substr(0, text.find('\0'));
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (; text.size() >= 2; text.remove_prefix(2)) {
    const unsigned long number = std::stoul(std::string(text.substr(0, 2)), nullptr, 16);
    bytes.push_back(static_cast<std::uint8_t>(number & 0xFFU));
  }
  return bytes;
}

std::string BinToHex(const unsigned char* bytes, std::size_t length) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(2 * length);
  for (std::size_t i = 0; i < length; ++i) {
    const bool isPadded = i == 0;
    if (isPadded || bytes[i] >= 0x10) text += digits[bytes[i] >> 4U];
    text += digits[bytes[i] & 0x0FU];
  }
  return text;
}

std::optional<std::string> ToHexFromEncodedData(const Platform::Value& buffer) {
  const std::vector<std::uint8_t>& bytes = buffer.AsData();
  return ToNSString(BinToHex(bytes.data(), bytes.size()));
}

}  // namespace Velmora
