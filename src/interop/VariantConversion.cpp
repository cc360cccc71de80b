#include "interop/VariantConversion.h"

#include "interop/ValueBuilder.h"
#include "interop/VariantBuilder.h"

namespace Velmora {

std::shared_ptr<Variant> PlatformToVariant(const Platform::Value& value) {
  return VariantBuilder().Build(value);
}

VariantMap ToVariantMap(const Platform::Value& dictionary) {
  return VariantBuilder().BuildMap(dictionary);
}

VariantVector ToVariantVector(const Platform::Value& array) {
  return VariantBuilder().BuildVector(array);
}

Platform::Value VariantToPlatform(const std::shared_ptr<Variant>& variant) {
  return ValueBuilder().Build(variant);
}

Platform::Value ToNSDictionary(const VariantMap& map) {
  return ValueBuilder().BuildDictionary(map);
}

Platform::Value ToNSArray(const VariantVector& vector) { return ValueBuilder().BuildArray(vector); }

}  // namespace Velmora
