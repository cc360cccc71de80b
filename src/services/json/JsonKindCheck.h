#pragma once

#include <memory>

#include "VelmoraCore/Variant.h"

// What JSON objects and arrays ask of a stored value before they hand it out. Each check gives the
// code of the error to raise, or null when the value is what was asked for.
namespace Velmora {

using JsonKindCheck = const char* (*)(const std::shared_ptr<Variant>& value);

const char* CheckJsonType(const std::shared_ptr<Variant>& value);
const char* CheckJsonNumber(const std::shared_ptr<Variant>& value);
const char* CheckJsonString(const std::shared_ptr<Variant>& value);
const char* CheckJsonBoolean(const std::shared_ptr<Variant>& value);
const char* CheckJsonObject(const std::shared_ptr<Variant>& value);
const char* CheckJsonArray(const std::shared_ptr<Variant>& value);

}  // namespace Velmora
