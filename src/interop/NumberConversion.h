#pragma once

#include <chrono>
#include <cstdint>

#include "QEXCore_iOS/Platform/Value.h"

// Numbers between the platform and the core. Every function may be called on any thread.
namespace Velmora {

// Numbers of the storage type that fits the argument: Float64, SInt32, SInt64, Float32. A bool
// gives the platform's boolean, which is no number.
Platform::Value ToNSNumber(double number);
Platform::Value ToNSNumber(float number);
Platform::Value ToNSNumber(int number);
Platform::Value ToNSNumber(long number);
Platform::Value ToNSNumber(long long number);
Platform::Value ToNSNumber(bool boolean);

// A number's or boolean's value as the type asked for, by the rules of Platform::Value; 0 or false
// for a value of any other kind.
double ToDouble(const Platform::Value& number);
float ToFloat(const Platform::Value& number);
bool ToBool(const Platform::Value& number);
std::int32_t ToInt32(const Platform::Value& number);
std::int64_t ToInt64(const Platform::Value& number);

double ToNSTimeInterval(std::chrono::seconds duration);

}  // namespace Velmora
