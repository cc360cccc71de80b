#include "modules/RuleTest.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <compare>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

#include "modules/MemberReader.h"

namespace Velmora {
namespace {

constexpr const char* kField = "field";

// A number as exactly as it was given.
struct Number {
  std::optional<std::int64_t> whole;
  double real = 0;
};

template <class T>
std::optional<T> Spelt(std::string_view text) {
  T number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<Number> NumberSpelt(std::string_view text) {
  if (const auto whole = Spelt<std::int64_t>(text)) {
    return Number{whole, static_cast<double>(*whole)};
  }
  const auto real = Spelt<double>(text);
  if (!real || !std::isfinite(*real)) return std::nullopt;
  return Number{std::nullopt, *real};
}

// Context data are texts, so that a text that spells a number counts as one.
std::optional<Number> NumberOf(const FieldValue& found) {
  if (found.text != nullptr) return NumberSpelt(*found.text);
  if (found.value == nullptr || !found.value->IsNumericKind()) return std::nullopt;
  if (found.value->GetKind() == VariantKind::Double) {
    return Number{std::nullopt, found.value->GetDouble()};
  }
  return Number{found.value->GetLong(), found.value->GetDouble()};
}

std::partial_ordering Compare(const Number& left, const Number& right) {
  if (left.whole && right.whole) return *left.whole <=> *right.whole;
  return left.real <=> right.real;
}

FieldValue ValueOf(const Variant& variant) {
  const bool isText = variant.GetKind() == VariantKind::String;
  return {.text = isText ? &variant.GetString() : nullptr, .value = &variant};
}

bool IsEqual(const FieldValue& found, const Variant& wanted) {
  if (wanted.GetKind() == VariantKind::String) {
    return found.text != nullptr && *found.text == wanted.GetString();
  }
  if (wanted.GetKind() == VariantKind::Boolean) {
    return found.value != nullptr && found.value->GetKind() == VariantKind::Boolean &&
           found.value->GetBoolean() == wanted.GetBoolean();
  }
  const std::optional<Number> left = NumberOf(found);
  const std::optional<Number> right = NumberOf(ValueOf(wanted));
  return left && right && Compare(*left, *right) == std::partial_ordering::equivalent;
}

bool Contains(const FieldValue& found, const Variant& wanted) {
  if (found.text != nullptr) {
    return wanted.GetKind() == VariantKind::String &&
           found.text->find(wanted.GetString()) != std::string::npos;
  }
  if (found.value == nullptr || found.value->GetKind() != VariantKind::VariantVector) return false;
  const VariantVector& elements = found.value->GetVariantVector();
  return std::any_of(elements.begin(), elements.end(), [&](const auto& element) {
    return element != nullptr && IsEqual(ValueOf(*element), wanted);
  });
}

bool IsScalar(const Variant& value) {
  return value.GetKind() == VariantKind::String || value.GetKind() == VariantKind::Boolean ||
         value.IsNumericKind();
}

}  // namespace

RuleTest::RuleTest(RuleField field, Comparison comparison, std::shared_ptr<Variant> wanted)
    : field_(std::move(field)), comparison_(comparison), wanted_(std::move(wanted)) {}

std::optional<RuleTest> RuleTest::Read(const VariantMap& json, std::string& problem) {
  MemberReader reader(json);
  const std::shared_ptr<Variant> place = reader.Value(kField, MemberReader::Need::Required);
  const auto field = place == nullptr ? std::nullopt : RuleField::Read(*place, problem);
  if (!problem.empty()) return std::nullopt;
  std::optional<RuleTest> test;
  for (const auto& [name, wanted] : json) {
    const std::optional<Comparison> comparison = ComparisonNamed(name);
    if (!comparison) continue;
    reader.Value(name, MemberReader::Need::Required);
    if (test) reader.Complain("a test has one comparison only");
    reader.Complain(ProblemWith(*comparison, wanted.get()));
    if (field) test = RuleTest(*field, *comparison, wanted);
  }
  if (!test) reader.Complain("a test needs a comparison");
  problem = reader.Problem();
  return problem.empty() ? test : std::nullopt;
}

std::optional<RuleTest::Comparison> RuleTest::ComparisonNamed(const std::string& name) {
  if (name == "equals") return Comparison::Equals;
  if (name == "contains") return Comparison::Contains;
  if (name == "exists") return Comparison::Exists;
  if (name == "greater") return Comparison::Greater;
  if (name == "less") return Comparison::Less;
  return std::nullopt;
}

std::string RuleTest::ProblemWith(Comparison comparison, const Variant* wanted) {
  const bool isScalar = wanted != nullptr && IsScalar(*wanted);
  if (!isScalar) return "what a field is compared with is a text, a number, true or false";
  switch (comparison) {
    case Comparison::Exists:
      if (wanted->GetKind() != VariantKind::Boolean) return R"("exists" is true or false)";
      break;
    case Comparison::Greater:
    case Comparison::Less:
      if (!wanted->IsNumericKind()) return R"("greater" and "less" need a number)";
      break;
    case Comparison::Contains:
      if (wanted->GetKind() == VariantKind::String && wanted->GetString().empty()) {
        return R"("contains" needs a text that is not empty)";
      }
      break;
    case Comparison::Equals:
      break;
  }
  return {};
}

bool RuleTest::Passes(const Event& event) const {
  const FieldValue found = field_.Find(event);
  switch (comparison_) {
    case Comparison::Equals:
      return IsEqual(found, *wanted_);
    case Comparison::Contains:
      return Contains(found, *wanted_);
    case Comparison::Exists:
      return (found.text != nullptr || found.value != nullptr) == wanted_->GetBoolean();
    case Comparison::Greater:
    case Comparison::Less:
      return IsOrdered(found);
  }
  return false;
}

bool RuleTest::IsOrdered(const FieldValue& found) const {
  const std::optional<Number> left = NumberOf(found);
  const std::optional<Number> right = NumberOf(ValueOf(*wanted_));
  if (!left || !right) return false;
  const std::partial_ordering order = Compare(*left, *right);
  return comparison_ == Comparison::Greater ? std::is_gt(order) : std::is_lt(order);
}

}  // namespace Velmora
