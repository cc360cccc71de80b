#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/Variant.h"
#include "modules/RuleField.h"

namespace Velmora {

// One test of a rule: a field of the event against a value of the rule's. docs/rules.md says what
// each comparison means. Never changes once read; any thread may ask.
class RuleTest {
 public:
  // From an object such as {"field": "type", "equals": "analytics"}. Nothing, and `problem` says
  // why, when it cannot be understood.
  static std::optional<RuleTest> Read(const VariantMap& json, std::string& problem);

  // A field that is not there passes no test but that it is not there.
  bool Passes(const Event& event) const;

 private:
  enum class Comparison { Equals, Contains, Exists, Greater, Less };

  RuleTest(RuleField field, Comparison comparison, std::shared_ptr<Variant> wanted);

  static std::optional<Comparison> ComparisonNamed(const std::string& name);
  static std::string ProblemWith(Comparison comparison, const Variant* wanted);
  bool IsOrdered(const FieldValue& found) const;

  RuleField field_;
  Comparison comparison_;
  std::shared_ptr<Variant> wanted_;
};

}  // namespace Velmora
