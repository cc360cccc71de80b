#pragma once

#include <optional>
#include <string>

#include "VelmoraCore/Variant.h"

// JSON text and the core's variants, by way of the platform's JSON. Nothing on failure, and then
// `problem` says for people what is wrong.
namespace Velmora {

// What ToVariantMap and ToVariantVector make of the value of the text, which counts up to its first
// zero byte.
std::optional<VariantMap> ReadJsonObject(const std::string& text, std::string& problem);
std::optional<VariantVector> ReadJsonArray(const std::string& text, std::string& problem);

// Pretty-printed, what ToNSDictionary and ToNSArray make of the variants. Members without a value
// on the platform (null, the empty string) are left out; such elements are a failure.
std::optional<std::string> WriteJson(const VariantMap& map, std::string& problem);
std::optional<std::string> WriteJson(const VariantVector& vector, std::string& problem);

}  // namespace Velmora
