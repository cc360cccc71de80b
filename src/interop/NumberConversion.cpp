#include "interop/NumberConversion.h"

namespace Velmora {

Platform::Value ToNSNumber(double number) { return number; }

Platform::Value ToNSNumber(float number) { return number; }

Platform::Value ToNSNumber(int number) { return number; }

Platform::Value ToNSNumber(long number) { return number; }

Platform::Value ToNSNumber(long long number) { return number; }

Platform::Value ToNSNumber(bool boolean) { return boolean; }

double ToDouble(const Platform::Value& number) { return number.AsDouble(); }

float ToFloat(const Platform::Value& number) { return number.AsFloat(); }

bool ToBool(const Platform::Value& number) { return number.AsBool(); }

std::int32_t ToInt32(const Platform::Value& number) { return number.AsInt32(); }

std::int64_t ToInt64(const Platform::Value& number) { return number.AsInt64(); }

double ToNSTimeInterval(std::chrono::seconds duration) {
  return std::chrono::duration<double>(duration).count();
}

}  // namespace Velmora
