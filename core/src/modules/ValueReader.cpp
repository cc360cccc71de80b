#include "modules/ValueReader.h"

namespace Velmora {

ValueReader::ValueReader(const Event& event) : data_(event.GetData()) {}

std::shared_ptr<Variant> ValueReader::Value(const char* key) const {
  return data_ == nullptr ? nullptr : data_->Get(key);
}

std::optional<std::string> ValueReader::Text(const char* key) const {
  const std::shared_ptr<Variant> value = Value(key);
  if (value == nullptr || value->GetKind() != VariantKind::String) return std::nullopt;
  return value->GetString();
}

std::optional<VariantMap> ValueReader::Map(const char* key) const {
  const std::shared_ptr<Variant> value = Value(key);
  if (value == nullptr || value->GetKind() != VariantKind::VariantMap) return std::nullopt;
  return value->GetVariantMap();
}

}  // namespace Velmora
