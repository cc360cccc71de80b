#include "QEXCore_iOS/Platform/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Platform {
namespace {

bool IsContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

// What a leading byte asks of the character it begins.
struct Shape {
  std::size_t length;
  unsigned char lowestSecond;
  unsigned char highestSecond;
};

// The limits on the second byte keep out over-long forms, surrogates and what is above U+10FFFF.
Shape ShapeOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

std::size_t CharacterLength(const unsigned char* bytes, std::size_t available) {
  const Shape shape = ShapeOf(bytes[0]);
  if (shape.length <= 1) return shape.length;
  if (shape.length > available) return 0;
  if (bytes[1] < shape.lowestSecond || bytes[1] > shape.highestSecond) return 0;
  for (std::size_t i = 2; i < shape.length; ++i) {
    if (!IsContinuation(bytes[i])) return 0;
  }
  return shape.length;
}

// Moves past whole words without a byte above 0x7F: most text is ASCII.
const unsigned char* SkipAsciiWords(const unsigned char* bytes, const unsigned char* end) {
  while (end - bytes >= 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if ((word & 0x8080808080808080U) != 0) break;
    bytes += sizeof word;
  }
  return bytes;
}

}  // namespace

std::size_t Utf8CharacterLength(std::string_view bytes) noexcept {
  if (bytes.empty()) return 0;
  return CharacterLength(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

bool IsValidUtf8(std::string_view bytes) noexcept {
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* const end = at + bytes.size();
  while (at != end) {
    if (*at < 0x80) {
      at = SkipAsciiWords(at, end);
      while (at != end && *at < 0x80) ++at;
      continue;
    }
    const std::size_t length = CharacterLength(at, static_cast<std::size_t>(end - at));
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace Platform
