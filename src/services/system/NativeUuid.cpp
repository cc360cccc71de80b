#include "services/system/NativeUuid.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <random>

#include "services/system/AskHost.h"

namespace Velmora {
namespace {

Platform::UuidBytes WithVersionAndVariant(Platform::UuidBytes bytes) {
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
  return bytes;
}

// From the time, where the program happens to lie in memory, and a count.
Platform::UuidBytes MadeUpBytes() {
  static std::atomic<std::uint32_t> count{0};
  const auto now =
      static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  const auto place = reinterpret_cast<std::uintptr_t>(&count);
  std::seed_seq seed{static_cast<std::uint32_t>(now), static_cast<std::uint32_t>(now >> 32),
                     static_cast<std::uint32_t>(place), static_cast<std::uint32_t>(place >> 32),
                     ++count};
  std::mt19937 generator(seed);
  Platform::UuidBytes bytes{};
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(generator()); });
  return WithVersionAndVariant(bytes);
}

Platform::UuidBytes RandomBytes() {
  using Random = std::optional<Platform::UuidBytes>;
  const Random random = AskHost(
      [](const Platform::Host& host) -> Random { return host.uuidGenerator->Random(); }, Random());
  return random ? *random : MadeUpBytes();
}

}  // namespace

NativeUuid::NativeUuid() : bytes_(RandomBytes()) {}

std::string NativeUuid::GetString() const {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += kDigits[bytes_[i] >> 4];
    text += kDigits[bytes_[i] & 0x0F];
  }
  return text;
}

void NativeUuid::GetBytes(unsigned char* out) const {
  std::copy(bytes_.begin(), bytes_.end(), out);
}

}  // namespace Velmora
