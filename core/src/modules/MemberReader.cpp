#include "modules/MemberReader.h"

#include "base/LogText.h"

namespace Velmora {
namespace {

std::string Quoted(const std::string& name) { return '"' + LogText::Readable(name) + '"'; }

}  // namespace

std::shared_ptr<Variant> MemberReader::Value(const std::string& name, Need need) {
  known_.insert(name);
  const auto member = members_.find(name);
  if (member != members_.end() && member->second != nullptr) return member->second;
  if (need == Need::Required) Complain(Quoted(name) + " is missing");
  return nullptr;
}

std::optional<std::string> MemberReader::Text(const std::string& name, Need need) {
  const std::shared_ptr<Variant> value = OfKind(name, VariantKind::String, need, "a text");
  if (value == nullptr) return std::nullopt;
  const std::string& text = value->GetString();
  if (text.size() > kMaxTextLength) {
    Complain(Quoted(name) + " is longer than " + std::to_string(kMaxTextLength) + " bytes");
    return std::nullopt;
  }
  if (need == Need::Required && text.empty()) {
    Complain(Quoted(name) + " is empty");
    return std::nullopt;
  }
  return text;
}

std::optional<bool> MemberReader::Flag(const std::string& name) {
  const std::shared_ptr<Variant> value =
      OfKind(name, VariantKind::Boolean, Need::Optional, "true or false");
  return value == nullptr ? std::nullopt : std::optional(value->GetBoolean());
}

std::optional<std::int64_t> MemberReader::WholeNumber(const std::string& name, std::int64_t least,
                                                      std::int64_t greatest) {
  const std::shared_ptr<Variant> value =
      OfKind(name, VariantKind::Long, Need::Optional, "a whole number");
  if (value == nullptr) return std::nullopt;
  if (value->GetLong() >= least && value->GetLong() <= greatest) return value->GetLong();
  Complain(Quoted(name) + " is not between " + std::to_string(least) + " and " +
           std::to_string(greatest));
  return std::nullopt;
}

std::shared_ptr<Variant> MemberReader::Vector(const std::string& name, std::size_t mostElements) {
  std::shared_ptr<Variant> value =
      OfKind(name, VariantKind::VariantVector, Need::Required, "a list");
  if (value == nullptr || value->GetVariantVector().size() <= mostElements) return value;
  Complain(Quoted(name) + " has more than " + std::to_string(mostElements) + " elements");
  return nullptr;
}

std::shared_ptr<Variant> MemberReader::Map(const std::string& name, Need need) {
  return OfKind(name, VariantKind::VariantMap, need, "an object");
}

void MemberReader::Complain(const std::string& problem) {
  if (problem_.empty()) problem_ = problem;
}

std::string MemberReader::Problem() {
  for (const auto& [name, value] : members_) {
    if (!known_.contains(name)) Complain(Quoted(name) + " is not known");
  }
  return problem_;
}

std::shared_ptr<Variant> MemberReader::OfKind(const std::string& name, VariantKind kind, Need need,
                                              const char* kindName) {
  std::shared_ptr<Variant> value = Value(name, need);
  if (value == nullptr || value->GetKind() == kind) return value;
  Complain(Quoted(name) + " is not " + kindName);
  return nullptr;
}

}  // namespace Velmora
