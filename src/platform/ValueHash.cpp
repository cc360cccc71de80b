#include "platform/ValueHash.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <exception>
#include <random>

#include "platform/ValueInternals.h"

namespace Platform {
namespace {

struct Seed {
  std::uint64_t first;
  std::uint64_t second;
};

const Seed& ProcessSeed() {
  static const Seed seed = [] {
    try {
      std::random_device device;
      const auto draw = [&device] { return (std::uint64_t{device()} << 32) | device(); };
      return Seed{draw(), draw()};
    } catch (const std::exception&) {
      // Hard to guess at least, where the system has no random numbers.
      static const char place = 0;
      const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
      return Seed{static_cast<std::uint64_t>(now), reinterpret_cast<std::uintptr_t>(&place)};
    }
  }();
  return seed;
}

std::uint64_t LoadLittleEndian(const char* bytes, std::size_t count) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < count; ++i) {
    word |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  }
  return word;
}

// SipHash-1-3: a keyed hash that stays fast on short texts.
class SipHash {
 public:
  explicit SipHash(const Seed& seed)
      : v0_(seed.first ^ 0x736f6d6570736575U),
        v1_(seed.second ^ 0x646f72616e646f6dU),
        v2_(seed.first ^ 0x6c7967656e657261U),
        v3_(seed.second ^ 0x7465646279746573U) {}

  void Word(std::uint64_t word) {
    v3_ ^= word;
    Round();
    v0_ ^= word;
  }

  std::uint64_t Finish() {
    v2_ ^= 0xff;
    Round();
    Round();
    Round();
    return v0_ ^ v1_ ^ v2_ ^ v3_;
  }

 private:
  void Round() {
    v0_ += v1_;
    v1_ = std::rotl(v1_, 13) ^ v0_;
    v0_ = std::rotl(v0_, 32);
    v2_ += v3_;
    v3_ = std::rotl(v3_, 16) ^ v2_;
    v0_ += v3_;
    v3_ = std::rotl(v3_, 21) ^ v0_;
    v2_ += v1_;
    v1_ = std::rotl(v1_, 17) ^ v2_;
    v2_ = std::rotl(v2_, 32);
  }

  std::uint64_t v0_;
  std::uint64_t v1_;
  std::uint64_t v2_;
  std::uint64_t v3_;
};

std::uint64_t HashOfBytes(const char* bytes, std::size_t length) {
  SipHash hash(ProcessSeed());
  std::size_t rest = length;
  for (; rest >= 8; rest -= 8, bytes += 8) {
    hash.Word(LoadLittleEndian(bytes, 8));
  }
  hash.Word(LoadLittleEndian(bytes, rest) | (std::uint64_t{length} << 56));
  return hash.Finish();
}

std::uint64_t HashOfWords(std::uint64_t first, std::uint64_t second) {
  SipHash hash(ProcessSeed());
  hash.Word(first);
  hash.Word(second);
  return hash.Finish();
}

// Numbers of equal value hash alike, whatever their storage.
std::uint64_t HashOfNumber(const Value& number) {
  constexpr auto kind = static_cast<std::uint64_t>(ValueKind::Number);
  if (!ValueInternals::IsReal(number)) {
    return HashOfWords(kind, static_cast<std::uint64_t>(ValueInternals::IntegerOf(number)));
  }
  const double real = ValueInternals::RealOf(number);
  if (std::isnan(real)) return HashOfWords(kind, 0x7ff8000000000000U);
  constexpr double limit = 9223372036854775808.0;
  if (real >= -limit && real < limit && std::trunc(real) == real) {
    return HashOfWords(kind, static_cast<std::uint64_t>(static_cast<std::int64_t>(real)));
  }
  return HashOfWords(kind, std::bit_cast<std::uint64_t>(real));
}

}  // namespace

std::uint64_t HashOfText(std::string_view text) noexcept {
  return HashOfBytes(text.data(), text.size());
}

std::uint64_t HashOf(const Value& value) noexcept {
  const auto kind = static_cast<std::uint64_t>(value.Kind());
  switch (value.Kind()) {
    case ValueKind::String:
      return HashOfText(value.AsStringView());
    case ValueKind::Number:
      return HashOfNumber(value);
    case ValueKind::Boolean:
      return HashOfWords(kind, value.AsBool() ? 1 : 0);
    case ValueKind::Array:
    case ValueKind::Dictionary:
      return HashOfWords(kind, value.Count());
    case ValueKind::Data: {
      const auto& bytes = value.AsData();
      return HashOfBytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    case ValueKind::Object:
      return HashOfWords(kind, value.AsObject()->Hash());
    case ValueKind::Absent:
    case ValueKind::Null:
      break;
  }
  return HashOfWords(kind, 0);
}

}  // namespace Platform
