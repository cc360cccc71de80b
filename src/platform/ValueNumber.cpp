#include <cmath>
#include <concepts>
#include <limits>

#include "platform/ValueInternals.h"

namespace Platform {
namespace {

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

int BitsOf(NumberType integerType) {
  switch (integerType) {
    case NumberType::SInt8:
    case NumberType::Char:
      return 8;
    case NumberType::SInt16:
    case NumberType::Short:
      return 16;
    case NumberType::SInt32:
    case NumberType::Int:
      return 32;
    default:
      return 64;
  }
}

std::int64_t KeepLowBits(std::int64_t integer, int bits) {
  switch (bits) {
    case 8:
      return static_cast<std::int8_t>(integer);
    case 16:
      return static_cast<std::int16_t>(integer);
    case 32:
      return static_cast<std::int32_t>(integer);
    default:
      return integer;
  }
}

// Toward zero; the nearest extreme of `bits` where the number does not fit.
std::int64_t NearestInteger(double real, int bits) {
  if (std::isnan(real)) return 0;
  const double limit = std::ldexp(1.0, bits - 1);
  const std::int64_t largest = std::numeric_limits<std::int64_t>::max() >> (64 - bits);
  if (real >= limit) return largest;
  if (real <= -limit) return -largest - 1;
  return static_cast<std::int64_t>(real);
}

}  // namespace

void ValueInternals::StoreInteger(Value& value, NumberType type, std::int64_t integer) {
  value.payload_.integer = KeepLowBits(integer, BitsOf(type));
  value.kind_ = ValueKind::Number;
  value.numberType_ = type;
}

void ValueInternals::StoreReal(Value& value, NumberType type, double real) {
  const bool isSingle = type == NumberType::Float32 || type == NumberType::Float;
  value.payload_.real = isSingle ? static_cast<double>(static_cast<float>(real)) : real;
  value.kind_ = ValueKind::Number;
  value.numberType_ = type;
}

Value::Value(float number) noexcept : Value(Number(NumberType::Float32, number)) {}

Value::Value(double number) noexcept : Value(Number(NumberType::Float64, number)) {}

Value Value::Number(NumberType type, double number) noexcept {
  Value value;
  if (IsFloatingPoint(type)) {
    ValueInternals::StoreReal(value, type, number);
  } else {
    ValueInternals::StoreInteger(value, type, NearestInteger(number, BitsOf(type)));
  }
  return value;
}

Value Value::OfSigned(NumberType type, std::int64_t number) noexcept {
  Value value;
  if (IsFloatingPoint(type)) {
    ValueInternals::StoreReal(value, type, static_cast<double>(number));
  } else {
    ValueInternals::StoreInteger(value, type, number);
  }
  return value;
}

Value Value::OfUnsigned(NumberType type, std::uint64_t number) noexcept {
  if (IsFloatingPoint(type)) return Number(type, static_cast<double>(number));
  return OfSigned(type, static_cast<std::int64_t>(number));
}

Value Value::OfLargeUnsigned(std::uint64_t number) noexcept {
  const bool fits = number <= std::numeric_limits<std::int64_t>::max();
  return OfUnsigned(fits ? NumberType::SInt64 : NumberType::Float64, number);
}

std::optional<NumberType> Value::StorageType() const noexcept {
  if (!IsNumber()) return std::nullopt;
  return numberType_;
}

bool Value::AsBool() const noexcept {
  if (IsBoolean()) return payload_.boolean;
  if (!IsNumber()) return false;
  return ValueInternals::IsReal(*this) ? payload_.real != 0 : payload_.integer != 0;
}

std::int32_t Value::AsInt32() const noexcept {
  if (IsNumber() && ValueInternals::IsReal(*this)) {
    return static_cast<std::int32_t>(NearestInteger(payload_.real, 32));
  }
  return static_cast<std::int32_t>(AsInt64());
}

std::int64_t Value::AsInt64() const noexcept {
  if (IsBoolean()) return payload_.boolean ? 1 : 0;
  if (!IsNumber()) return 0;
  return ValueInternals::IsReal(*this) ? NearestInteger(payload_.real, 64) : payload_.integer;
}

float Value::AsFloat() const noexcept {
  // Straight from an integer: by way of a double it would be rounded twice.
  if (IsNumber() && !ValueInternals::IsReal(*this)) return static_cast<float>(payload_.integer);
  return static_cast<float>(AsDouble());
}

double Value::AsDouble() const noexcept {
  if (IsBoolean()) return payload_.boolean ? 1 : 0;
  if (!IsNumber()) return 0;
  return ValueInternals::IsReal(*this) ? payload_.real : static_cast<double>(payload_.integer);
}

}  // namespace Platform
