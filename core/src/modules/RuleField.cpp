#include "modules/RuleField.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Velmora {
namespace {

std::vector<std::string> SplitAtDots(const std::string& text) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t dot = text.find('.'); dot != std::string::npos; dot = text.find('.', begin)) {
    parts.push_back(text.substr(begin, dot - begin));
    begin = dot + 1;
  }
  parts.push_back(text.substr(begin));
  return parts;
}

// Empty when the value is neither a text nor a list of texts, or one of them is empty.
std::vector<std::string> PartsOf(const Variant& json) {
  std::vector<std::string> parts;
  if (json.GetKind() == VariantKind::String) {
    parts = SplitAtDots(json.GetString());
  } else if (json.GetKind() == VariantKind::VariantVector) {
    for (const std::shared_ptr<Variant>& element : json.GetVariantVector()) {
      const bool isText = element != nullptr && element->GetKind() == VariantKind::String;
      parts.push_back(isText ? element->GetString() : "");
    }
  }
  const bool isWhole = std::none_of(parts.begin(), parts.end(),
                                    [](const std::string& part) { return part.empty(); });
  return isWhole ? parts : std::vector<std::string>();
}

bool IsNothing(const Variant* value) {
  return value == nullptr || value->GetKind() == VariantKind::Null;
}

const Variant* Member(const VariantMap& map, const std::string& key) {
  const auto member = map.find(key);
  return member == map.end() ? nullptr : member->second.get();
}

}  // namespace

std::optional<RuleField> RuleField::Read(const Variant& json, std::string& problem) {
  std::vector<std::string> parts = PartsOf(json);
  const std::string place = parts.empty() ? "" : parts.front();
  RuleField field;
  if (place == "data") {
    field.place_ = Place::Data;
    field.keys_.assign(std::next(parts.begin()), parts.end());
    if (field.keys_.empty() || field.keys_.size() > kMaxKeys) {
      problem = "a field of the data needs 1 to " + std::to_string(kMaxKeys) + " keys";
      return std::nullopt;
    }
    return field;
  }
  if (parts.size() != 1 || (place != "type" && place != "source" && place != "name")) {
    problem = R"(a field is "type", "source", "name" or "data." and a path)";
    return std::nullopt;
  }
  field.place_ = place == "type" ? Place::Type : place == "source" ? Place::Source : Place::Name;
  return field;
}

FieldValue RuleField::Find(const Event& event) const {
  if (place_ == Place::Type) return {.text = &event.GetType()};
  if (place_ == Place::Source) return {.text = &event.GetSource()};
  if (place_ == Place::Name) return {.text = &event.GetName()};
  const std::shared_ptr<const EventData> data = event.GetData();
  if (data == nullptr) return {};
  const Variant* value = Member(data->GetAll(), keys_.front());
  for (std::size_t index = 1; index < keys_.size() && value != nullptr; ++index) {
    const bool isMap = value->GetKind() == VariantKind::VariantMap;
    value = isMap ? Member(value->GetVariantMap(), keys_[index]) : nullptr;
  }
  if (IsNothing(value)) return {};
  const bool isText = value->GetKind() == VariantKind::String;
  return {.text = isText ? &value->GetString() : nullptr, .value = value};
}

}  // namespace Velmora
