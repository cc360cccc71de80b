#pragma once

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// Tells `visitor` what `value` holds, in the order in which it holds it. Null when JSON can express
// all of it, else what it cannot, for people; the visitor has then heard a part. Whether strings
// are UTF-8 is not looked at.
const char* TellJsonValue(const Value& value, JsonVisitor& visitor);

}  // namespace Platform
