#pragma once

#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"
#include "VelmoraCore/Variant.h"

// Arrays and dictionaries of strings between the platform and the core. Every function may be
// called on any thread.
namespace Velmora {

// A dictionary in the order of the map. Entries whose key or value is a text that ToNSString
// refuses (an empty one, say) are left out.
Platform::Value ToNSDictionary(const StringMap& map);

// An array of the same length. Throws std::invalid_argument when ToNSString refuses an element.
Platform::Value ToNSArray(const std::vector<std::string>& vector);

// The entries whose key and value are both strings, empty ones included; of keys that become the
// same text the later one wins. Empty for anything but a dictionary.
StringMap ToStringMap(const Platform::Value& dictionary);

// Each element by way of ToCppString, so that what is no string becomes an empty one. Empty for
// anything but an array.
std::vector<std::string> ToStringVector(const Platform::Value& array);

}  // namespace Velmora
