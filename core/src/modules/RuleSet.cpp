#include "modules/RuleSet.h"

#include <set>
#include <utility>

#include "VelmoraCore/Log.h"
#include "base/LogText.h"
#include "modules/MemberReader.h"

namespace Velmora {
namespace {

using Need = MemberReader::Need;

constexpr const char* kLogTag = "Rules";
constexpr std::int64_t kVersion = 1;
constexpr std::int64_t kMaxLimit = 1'000'000;

bool IsId(const std::string& id) {
  constexpr std::size_t kLongest = 64;
  constexpr const char* kAllowed =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
  return !id.empty() && id.size() <= kLongest &&
         id.find_first_not_of(kAllowed) == std::string::npos;
}

// "once" is a limit of one.
std::optional<std::int64_t> ReadLimit(MemberReader& reader) {
  const std::optional<bool> once = reader.Flag("once");
  const std::optional<std::int64_t> limit = reader.WholeNumber("limit", 1, kMaxLimit);
  if (once && limit) reader.Complain(R"("once" and "limit" exclude each other)");
  return once.value_or(false) ? 1 : limit;
}

std::optional<Rule> ReadRule(const VariantMap& json, std::string& problem) {
  MemberReader reader(json);
  Rule rule;
  rule.id = reader.Text("id", Need::Required).value_or("");
  if (!rule.id.empty() && !IsId(rule.id)) {
    reader.Complain(R"("id" is not made of letters, digits, ".", "_" and "-", 64 at most)");
  }
  rule.limit = ReadLimit(reader);
  if (const std::shared_ptr<Variant> condition = reader.Value("if", Need::Required)) {
    std::string conditionProblem;
    if (auto read = RuleCondition::Read(condition, conditionProblem)) {
      rule.condition = std::move(*read);
    }
    reader.Complain(conditionProblem);
  }
  if (const std::shared_ptr<Variant> consequences = reader.Map("then", Need::Required)) {
    std::string consequenceProblem;
    rule.consequences = ReadConsequences(consequences->GetVariantMap(), consequenceProblem);
    reader.Complain(consequenceProblem);
  }
  problem = reader.Problem();
  return problem.empty() ? std::optional(std::move(rule)) : std::nullopt;
}

// The name of a rule that may not be one, for the log.
std::string Title(const std::shared_ptr<Variant>& json, std::size_t index) {
  if (json != nullptr && json->GetKind() == VariantKind::VariantMap) {
    const auto id = json->GetVariantMap().find("id");
    const bool isText = id != json->GetVariantMap().end() && id->second != nullptr &&
                        id->second->GetKind() == VariantKind::String;
    if (isText) return '"' + LogText::Readable(id->second->GetString()) + '"';
  }
  return "number " + std::to_string(index + 1);
}

RuleSet ReadList(const VariantVector& list) {
  RuleSet rules;
  std::set<std::string> ids;
  for (std::size_t index = 0; index < list.size(); ++index) {
    const std::shared_ptr<Variant>& json = list[index];
    std::string problem = "it is not an object";
    std::optional<Rule> rule;
    if (json != nullptr && json->GetKind() == VariantKind::VariantMap) {
      rule = ReadRule(json->GetVariantMap(), problem);
    }
    if (rule && !ids.insert(rule->id).second) {
      problem = "there is another of its id";
      rule = std::nullopt;
    }
    if (rule) {
      rules.push_back(std::move(*rule));
    } else {
      Log::Warning(kLogTag, "the rule %s is not used: %s", Title(json, index).c_str(),
                   problem.c_str());
    }
  }
  return rules;
}

}  // namespace

std::optional<RuleSet> ReadRules(const VariantMap& file, std::string& problem) {
  MemberReader reader(file);
  const auto version = reader.Value("version", Need::Required);
  if (version != nullptr &&
      !(version->GetKind() == VariantKind::Long && version->GetLong() == kVersion)) {
    reader.Complain("\"version\" is not " + std::to_string(kVersion));
  }
  const std::shared_ptr<Variant> list = reader.Vector("rules", kMaxRules);
  problem = reader.Problem();
  if (!problem.empty()) return std::nullopt;
  return ReadList(list->GetVariantVector());
}

}  // namespace Velmora
