#include "platform/linux/OpenSslBase64.h"

#include <algorithm>
#include <array>

#include <openssl/evp.h>

namespace Platform {
namespace {

// The library counts in int, so long texts go through it in pieces of whole groups.
constexpr std::size_t kGroupsAtOnce = 1 << 20;
constexpr std::size_t kBytesInGroup = 3;
constexpr std::size_t kCharactersInGroup = 4;

constexpr std::array<bool, 256> kIsInAlphabet = [] {
  std::array<bool, 256> table{};
  for (const char character :
       std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")) {
    table[static_cast<unsigned char>(character)] = true;
  }
  return table;
}();

// How many "=" end the text; at most two count as padding.
std::size_t PaddingOf(std::string_view text) {
  if (text.ends_with("==")) return 2;
  return text.ends_with('=') ? 1 : 0;
}

bool IsBase64(std::string_view text) {
  if (text.size() % kCharactersInGroup != 0) return false;
  text.remove_suffix(PaddingOf(text));
  return std::all_of(text.begin(), text.end(), [](char character) {
    return kIsInAlphabet[static_cast<unsigned char>(character)];
  });
}

const unsigned char* BytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned char* BytesAt(std::string& text, std::size_t offset) {
  return reinterpret_cast<unsigned char*>(text.data() + offset);
}

}  // namespace

std::optional<std::string> OpenSslBase64::Decode(std::string_view text) const {
  if (!IsBase64(text)) return std::nullopt;
  const std::size_t padding = PaddingOf(text);
  std::string bytes(text.size() / kCharactersInGroup * kBytesInGroup, '\0');
  for (std::size_t done = 0; !text.empty();) {
    const auto piece = text.substr(0, kGroupsAtOnce * kCharactersInGroup);
    const int length =
        EVP_DecodeBlock(BytesAt(bytes, done), BytesOf(piece), static_cast<int>(piece.size()));
    if (length < 0) return std::nullopt;
    done += static_cast<std::size_t>(length);
    text.remove_prefix(piece.size());
  }
  // The library writes a zero byte for each "=".
  bytes.erase(bytes.size() - padding);
  return bytes;
}

std::string OpenSslBase64::Encode(std::string_view bytes) const {
  const std::size_t groups = (bytes.size() + kBytesInGroup - 1) / kBytesInGroup;
  // The library ends each piece with a zero byte.
  std::string text(groups * kCharactersInGroup + 1, '\0');
  for (std::size_t done = 0; !bytes.empty();) {
    const auto piece = bytes.substr(0, kGroupsAtOnce * kBytesInGroup);
    const int length =
        EVP_EncodeBlock(BytesAt(text, done), BytesOf(piece), static_cast<int>(piece.size()));
    done += static_cast<std::size_t>(length);
    bytes.remove_prefix(piece.size());
  }
  text.pop_back();
  return text;
}

}  // namespace Platform
