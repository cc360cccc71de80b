#pragma once

#include <memory>

#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// The members of `object`, which must not be an empty pointer, as variants, however deep they are
// nested. A number without a fraction that fits becomes a Long, any other number a Double. Throws
// what reading the object throws.
VariantMap ToVariantMap(const std::shared_ptr<JsonObject>& object);

}  // namespace Velmora
