#include "VelmoraCore/EventData.h"

#include <utility>

namespace Velmora {

EventData::EventData() = default;

EventData::EventData(VariantMap values) : values_(std::move(values)) {}

void EventData::PutString(const std::string& key, const std::string& value) {
  Put(key, Variant::FromString(value));
}

void EventData::PutStringMap(const std::string& key, const StringMap& value) {
  VariantMap members;
  for (const auto& [name, text] : value) {
    members.emplace_hint(members.end(), name, Variant::FromString(text));
  }
  Put(key, Variant::FromVariantMap(std::move(members)));
}

void EventData::Put(const std::string& key, std::shared_ptr<Variant> value) {
  values_.insert_or_assign(key, std::move(value));
}

std::shared_ptr<Variant> EventData::Get(const std::string& key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? nullptr : found->second;
}

const VariantMap& EventData::GetAll() const { return values_; }

bool EventData::IsEmpty() const { return values_.empty(); }

std::shared_ptr<EventData> EventData::Copy() const { return std::make_shared<EventData>(*this); }

}  // namespace Velmora
