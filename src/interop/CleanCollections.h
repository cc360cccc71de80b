#pragma once

#include "QEXCore_iOS/Platform/Value.h"

// Separates what the core takes, strings, from whatever else an app may have put into a collection.
// Every function may be called on any thread.
namespace Velmora {

// The entries whose key is a string of non-zero length and whose value is a string, in their order.
// The others are stored as a dictionary in `invalidEntries` where that is not null, also when there
// are none. Anything but a dictionary counts as an empty one.
Platform::Value CleanDictionary(const Platform::Value& dictionary,
                                Platform::Value* invalidEntries = nullptr);

// The elements that are strings, empty ones included, in their order. The others are stored as an
// array in `invalidElements` where that is not null. Anything but an array counts as an empty one.
Platform::Value CleanArray(const Platform::Value& array,
                           Platform::Value* invalidElements = nullptr);

}  // namespace Velmora
