#include "modules/RuleCondition.h"

#include <algorithm>
#include <utility>

namespace Velmora {

// Walks the nested lists; what is open stands in `levels_`.
class RuleCondition::Reader {
 public:
  explicit Reader(const std::shared_ptr<Variant>& json) { Add(json); }

  std::vector<Step> Read() {
    while (!levels_.empty() && problem_.empty()) {
      Level& level = levels_.back();
      if (level.next < level.operands.size()) {
        // Held, since adding it may move the levels.
        const std::shared_ptr<Variant> operand = level.operands[level.next++];
        Add(operand);
      } else {
        AddStep({std::nullopt, level.joint, level.operands.size()});
        levels_.pop_back();
      }
    }
    return std::move(steps_);
  }

  const std::string& Problem() const { return problem_; }

 private:
  struct Level {
    Joint joint;
    VariantVector operands;
    std::size_t next = 0;
  };

  void Add(const std::shared_ptr<Variant>& json) {
    if (json == nullptr || json->GetKind() != VariantKind::VariantMap) {
      problem_ = "a condition is an object";
      return;
    }
    const VariantMap& members = json->GetVariantMap();
    if (members.size() == 1 && Open(members.begin()->first, members.begin()->second)) return;
    if (!problem_.empty()) return;
    if (std::optional<RuleTest> test = RuleTest::Read(members, problem_)) {
      AddStep({std::move(test), Joint::And, 0});
    }
  }

  // False when it is no joint.
  bool Open(const std::string& name, const std::shared_ptr<Variant>& operand) {
    if (name != "and" && name != "or" && name != "not") return false;
    if (levels_.size() == kMaxDepth) {
      problem_ = "the condition is nested more than " + std::to_string(kMaxDepth) + " deep";
    } else if (name == "not") {
      levels_.push_back({Joint::Not, {operand}});
    } else if (operand == nullptr || operand->GetKind() != VariantKind::VariantVector ||
               operand->GetVariantVector().empty()) {
      problem_ = R"("and" and "or" need a list of conditions)";
    } else {
      const Joint joint = name == "and" ? Joint::And : Joint::Or;
      levels_.push_back({joint, operand->GetVariantVector()});
    }
    return true;
  }

  void AddStep(Step step) {
    if (steps_.size() == kMaxSteps) {
      problem_ = "the condition has more than " + std::to_string(kMaxSteps) + " tests and joints";
      return;
    }
    steps_.push_back(std::move(step));
  }

  std::vector<Level> levels_;
  std::vector<Step> steps_;
  std::string problem_;
};

std::optional<RuleCondition> RuleCondition::Read(const std::shared_ptr<Variant>& json,
                                                 std::string& problem) {
  Reader reader(json);
  RuleCondition condition;
  condition.steps_ = reader.Read();
  problem = reader.Problem();
  return problem.empty() ? std::optional(std::move(condition)) : std::nullopt;
}

bool RuleCondition::Holds(const Event& event) const {
  std::vector<bool> truths;
  truths.reserve(steps_.size());
  for (const Step& step : steps_) {
    if (step.test) {
      truths.push_back(step.test->Passes(event));
      continue;
    }
    const auto first = truths.end() - static_cast<std::ptrdiff_t>(step.operands);
    const auto count = static_cast<std::size_t>(std::count(first, truths.end(), true));
    truths.resize(truths.size() - step.operands);
    truths.push_back(step.joint == Joint::And  ? count == step.operands
                     : step.joint == Joint::Or ? count > 0
                                               : count == 0);
  }
  return truths.back();
}

}  // namespace Velmora
