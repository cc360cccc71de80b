#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Value.h"
#include "VelmoraCore/Variant.h"

// Dynamic values between the platform and the core.
//
// Conversions copy, and use no stack for nesting, however deep. The two ways are not each other's
// inverse: null does not come back, an empty string does not, and storage types are not kept.
// Every function may be called on any thread.
namespace Velmora {

// String, boolean, null marker, array and dictionary become variants of their kind. Numbers go by
// their storage type: SInt8, SInt16, SInt32, Short, Int and NSInteger become 32-bit integers (an
// NSInteger loses its high bits), SInt64, Long and LongLong 64-bit ones, floating types doubles.
// Everything else becomes an empty pointer: absent values, Char, CFIndex and unknown storage types,
// byte buffers and other objects.
std::shared_ptr<Variant> PlatformToVariant(const Platform::Value& value);

// Each entry by way of PlatformToVariant and ToCppString. A value that becomes an empty pointer
// keeps its entry; of keys that become the same text the later one wins. Empty for anything but a
// dictionary.
VariantMap ToVariantMap(const Platform::Value& dictionary);

// Each element by way of PlatformToVariant, empty pointers included. Empty for anything but an
// array.
VariantVector ToVariantVector(const Platform::Value& array);

// An empty pointer, a null variant and a string that ToNSString refuses become absent. Throws
// std::invalid_argument when an element of a vector becomes absent, at whatever depth.
Platform::Value VariantToPlatform(const std::shared_ptr<Variant>& variant);

// A dictionary in the order of the map. Entries whose key or value becomes absent are left out.
Platform::Value ToNSDictionary(const VariantMap& map);

// An array of the same length. Throws std::invalid_argument when an element becomes absent.
Platform::Value ToNSArray(const VariantVector& vector);

}  // namespace Velmora
