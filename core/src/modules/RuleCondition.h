#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Variant.h"
#include "modules/RuleTest.h"

namespace Velmora {

// What an event must be like for a rule to fire: tests, joined by "and", "or" and "not".
//
// Kept as steps over a stack of truths, so that neither reading nor asking uses the machine's stack
// for nesting. Never changes once read; any thread may ask.
class RuleCondition {
 public:
  static constexpr std::size_t kMaxDepth = 16;
  static constexpr std::size_t kMaxSteps = 200;  // tests and joints together

  // Nothing, and `problem` says why, when it cannot be understood or is beyond its bounds.
  static std::optional<RuleCondition> Read(const std::shared_ptr<Variant>& json,
                                           std::string& problem);

  bool Holds(const Event& event) const;

 private:
  enum class Joint { And, Or, Not };

  // A test whose truth is put on the stack, or a joint of the last `operands` truths.
  struct Step {
    std::optional<RuleTest> test;
    Joint joint = Joint::And;
    std::size_t operands = 0;
  };

  class Reader;

  std::vector<Step> steps_;
};

}  // namespace Velmora
