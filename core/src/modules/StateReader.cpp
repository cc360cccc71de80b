#include "modules/StateReader.h"

#include <algorithm>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"

namespace Velmora {

bool StateReader::Refresh(HubContext& hub) {
  const std::shared_ptr<const std::string> text = hub.GetSharedState(owner_, nullptr);
  if (text == text_) return false;
  text_ = text;
  members_ = text == nullptr ? std::nullopt : JsonText::Read(hub.Services(), *text);
  return true;
}

std::shared_ptr<Variant> StateReader::Value(const std::string& key) const {
  if (!members_.has_value()) return nullptr;
  const auto member = members_->find(key);
  return member == members_->end() ? nullptr : member->second;
}

std::optional<std::string> StateReader::Text(const std::string& key) const {
  const std::shared_ptr<Variant> value = Value(key);
  if (value == nullptr) return std::nullopt;
  if (value->GetKind() == VariantKind::String) return value->GetString();
  Log::Warning(logTag_, "the member \"%s\" of the %s is no text and is ignored", key.c_str(),
               owner_);
  return std::nullopt;
}

std::int64_t StateReader::Number(const std::string& key, std::int64_t fallback, Range range) const {
  const std::shared_ptr<Variant> value = Value(key);
  if (value == nullptr) return fallback;
  if (value->IsNumericKind()) return std::clamp(value->GetLong(), range.least, range.greatest);
  Log::Warning(logTag_, "the member \"%s\" of the %s is no number and is ignored", key.c_str(),
               owner_);
  return fallback;
}

void ListenForConfiguration(HubContext& hub, const HubContext::Handler& follow) {
  hub.Listen(EventTypes::kConfiguration, EventSources::kRequest, follow);
  hub.Listen(EventTypes::kHub, EventSources::kSharedState, follow);
}

}  // namespace Velmora
