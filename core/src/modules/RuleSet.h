#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/Variant.h"
#include "modules/RuleCondition.h"
#include "modules/RuleConsequence.h"

namespace Velmora {

// When the condition holds for an event, the consequences follow, in their order.
struct Rule {
  std::string id;
  RuleCondition condition;
  std::vector<RuleConsequence> consequences;
  std::optional<std::int64_t> limit;  // how often it may fire at all
};

using RuleSet = std::vector<Rule>;

inline constexpr std::size_t kMaxRules = 500;

// The rules of a file, in their order; docs/rules.md describes it. A rule that cannot be understood
// is left out, with one warning line. Nothing, and `problem` says why, when the file as a whole
// cannot be.
std::optional<RuleSet> ReadRules(const VariantMap& file, std::string& problem);

}  // namespace Velmora
