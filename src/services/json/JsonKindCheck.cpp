#include "services/json/JsonKindCheck.h"

#include "VelmoraCore/ErrorCodes.h"

namespace Velmora {
namespace {

const char* CheckContainer(const std::shared_ptr<Variant>& value, VariantKind kind,
                           const char* wrongKind) {
  if (!value) return ErrorCodes::kJsonObjectIsNull;
  return value->GetKind() == kind ? nullptr : wrongKind;
}

}  // namespace

const char* CheckJsonType(const std::shared_ptr<Variant>& value) {
  return value ? nullptr : ErrorCodes::kJsonObjectUnknown;
}

const char* CheckJsonNumber(const std::shared_ptr<Variant>& value) {
  return value && value->IsNumericKind() ? nullptr : ErrorCodes::kJsonValueNotNumericType;
}

const char* CheckJsonString(const std::shared_ptr<Variant>& value) {
  return value && value->GetKind() == VariantKind::String ? nullptr
                                                          : ErrorCodes::kJsonValueNotStringType;
}

const char* CheckJsonBoolean(const std::shared_ptr<Variant>& value) {
  return value && value->GetKind() == VariantKind::Boolean ? nullptr
                                                           : ErrorCodes::kJsonValueNotBooleanType;
}

const char* CheckJsonObject(const std::shared_ptr<Variant>& value) {
  return CheckContainer(value, VariantKind::VariantMap, ErrorCodes::kJsonValueNotObjectType);
}

const char* CheckJsonArray(const std::shared_ptr<Variant>& value) {
  return CheckContainer(value, VariantKind::VariantVector, ErrorCodes::kJsonValueNotArrayType);
}

}  // namespace Velmora
