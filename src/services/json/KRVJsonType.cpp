#include "services/json/KRVJsonType.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Velmora::JsonType;
using Velmora::VariantKind;

constexpr std::array<std::pair<VariantKind, JsonType>, 8> VARIANT_JSON_TYPE_MAP = {{
    {VariantKind::Null, JsonType::Null},
    {VariantKind::String, JsonType::String},
    {VariantKind::Integer, JsonType::Number},
    {VariantKind::Long, JsonType::Number},
    {VariantKind::Double, JsonType::Number},
    {VariantKind::Boolean, JsonType::Boolean},
    {VariantKind::VariantVector, JsonType::Array},
    {VariantKind::VariantMap, JsonType::Object},
}};

}  // namespace

JsonType KRVJsonType::Get(VariantKind kind) {
  const auto* const found = std::find_if(VARIANT_JSON_TYPE_MAP.begin(), VARIANT_JSON_TYPE_MAP.end(),
                                         [kind](const auto& entry) { return entry.first == kind; });
  return found == VARIANT_JSON_TYPE_MAP.end() ? JsonType::Null : found->second;
}
