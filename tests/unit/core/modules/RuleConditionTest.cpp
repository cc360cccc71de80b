#include <limits>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "modules/RuleCondition.h"
#include "unit/core/modules/JsonFixture.h"

namespace {

using testing::HasSubstr;
using Velmora::Event;
using Velmora::EventData;
using Velmora::RuleCondition;
using Velmora::Variant;

class RuleConditionTest : public JsonFixture {
 protected:
  // Whether the condition holds; fails when it cannot be read.
  bool Holds(const std::string& condition) { return Holds(condition, event_); }
  static bool Holds(const std::string& condition, const Event& event) {
    std::string problem;
    const std::optional<RuleCondition> read = RuleCondition::Read(Value(condition), problem);
    EXPECT_EQ(problem, "") << condition;
    return read && read->Holds(event);
  }

  // A test of one field with one comparison.
  bool Is(const std::string& field, const std::string& comparison, const std::string& value) {
    return Holds(R"({"field": ")" + field + R"(", ")" + comparison + R"(": )" + value + "}");
  }

  static std::string ProblemWith(const std::string& condition) {
    std::string problem;
    EXPECT_FALSE(RuleCondition::Read(Value(condition), problem).has_value()) << condition;
    return problem;
  }

  static std::shared_ptr<EventData> Data(const std::string& json) {
    return std::make_shared<EventData>(Map(json));
  }

  Event event_{"track", "analytics", "request", Data(R"({
    "action": "addToCart",
    "contextdata": {"sku": "A-17", "total": "120.5", "a.b": "dotted", "empty": ""},
    "count": 3, "ratio": 0.5, "large": 9007199254740993, "isNew": true, "nothing": null,
    "tags": ["sale", 7, true, null, ["deep"]],
    "cart": {"owner": {"name": "Ada"}, "items": {}}
  })")};
};

TEST_F(RuleConditionTest, SeesTypeSourceAndName) {
  EXPECT_TRUE(Is("type", "equals", R"("analytics")"));
  EXPECT_FALSE(Is("type", "equals", R"("Analytics")"));
  EXPECT_TRUE(Is("source", "equals", R"("request")"));
  EXPECT_TRUE(Is("source", "contains", R"("que")"));
  EXPECT_TRUE(Is("name", "exists", "true"));
  EXPECT_FALSE(Is("name", "exists", "false"));
  EXPECT_FALSE(Is("type", "greater", "1"));
}

TEST_F(RuleConditionTest, EqualsComparesTextsNumbersAndTruths) {
  EXPECT_TRUE(Is("data.action", "equals", R"("addToCart")"));
  EXPECT_FALSE(Is("data.action", "equals", R"("addTo")"));
  EXPECT_TRUE(Is("data.contextdata.empty", "equals", R"("")"));
  EXPECT_TRUE(Is("data.count", "equals", "3"));
  EXPECT_TRUE(Is("data.count", "equals", "3.0"));
  EXPECT_FALSE(Is("data.count", "equals", R"("3")"));
  EXPECT_TRUE(Is("data.ratio", "equals", "0.5"));
  EXPECT_TRUE(Is("data.isNew", "equals", "true"));
  EXPECT_FALSE(Is("data.isNew", "equals", "false"));
  EXPECT_FALSE(Is("data.isNew", "equals", "1"));
  EXPECT_FALSE(Is("data.cart", "equals", R"("")"));
}

TEST_F(RuleConditionTest, WholeNumbersAreComparedExactly) {
  EXPECT_TRUE(Is("data.large", "equals", "9007199254740993"));
  EXPECT_FALSE(Is("data.large", "equals", "9007199254740992"));
  EXPECT_TRUE(Is("data.large", "greater", "9007199254740992"));
  EXPECT_FALSE(Is("data.large", "less", "9007199254740993"));
}

TEST_F(RuleConditionTest, ATextThatSpellsANumberIsOneWhereANumberIsWanted) {
  EXPECT_TRUE(Is("data.contextdata.total", "equals", "120.5"));
  EXPECT_TRUE(Is("data.contextdata.total", "greater", "120"));
  EXPECT_TRUE(Is("data.contextdata.total", "less", "121"));
  for (const char* text : {"12x", "x12", "", " 12", "+12", "0x12", "inf", "nan", "1e999", "1,5"}) {
    SCOPED_TRACE(text);
    EventData data;
    data.PutString("text", text);
    const Event event("", "t", "s", std::make_shared<EventData>(data));
    EXPECT_FALSE(Holds(R"({"field": "data.text", "greater": -1000})", event));
    EXPECT_FALSE(Holds(R"({"field": "data.text", "less": 1000})", event));
  }
}

TEST_F(RuleConditionTest, GreaterAndLessAreStrictAndNeedNumbers) {
  EXPECT_TRUE(Is("data.count", "greater", "2.9"));
  EXPECT_FALSE(Is("data.count", "greater", "3"));
  EXPECT_TRUE(Is("data.count", "less", "4"));
  EXPECT_FALSE(Is("data.count", "less", "3"));
  EXPECT_FALSE(Is("data.isNew", "greater", "0"));
  EXPECT_FALSE(Is("data.tags", "greater", "0"));
  EventData data;
  data.Put("nan", Variant::FromDouble(std::numeric_limits<double>::quiet_NaN()));
  const Event event("", "t", "s", std::make_shared<EventData>(data));
  EXPECT_FALSE(Holds(R"({"field": "data.nan", "greater": 0})", event));
  EXPECT_FALSE(Holds(R"({"field": "data.nan", "less": 0})", event));
}

TEST_F(RuleConditionTest, ContainsLooksIntoTextsAndLists) {
  EXPECT_TRUE(Is("data.action", "contains", R"("ToC")"));
  EXPECT_FALSE(Is("data.action", "contains", R"("tocart")"));
  EXPECT_TRUE(Is("data.tags", "contains", R"("sale")"));
  EXPECT_FALSE(Is("data.tags", "contains", R"("sal")"));
  EXPECT_TRUE(Is("data.tags", "contains", "7"));
  EXPECT_TRUE(Is("data.tags", "contains", "true"));
  EXPECT_FALSE(Is("data.tags", "contains", R"("deep")"));
  EXPECT_FALSE(Is("data.count", "contains", "3"));
  EXPECT_FALSE(Is("data.cart", "contains", R"("owner")"));
}

TEST_F(RuleConditionTest, FieldsLeadIntoNestedData) {
  EXPECT_TRUE(Is("data.cart.owner.name", "equals", R"("Ada")"));
  EXPECT_TRUE(Is("data.cart.owner", "exists", "true"));
  EXPECT_TRUE(Is("data.cart.items", "exists", "true"));
  EXPECT_FALSE(Is("data.cart.owner.name.first", "exists", "true"));
  EXPECT_TRUE(Holds(R"({"field": ["data", "contextdata", "a.b"], "equals": "dotted"})"));
  EXPECT_FALSE(Is("data.contextdata.a.b", "exists", "true"));
  EXPECT_TRUE(Holds(R"({"field": ["type"], "equals": "analytics"})"));
}

TEST_F(RuleConditionTest, WhatIsNotThereOrNullPassesOnlyThatItIsNotThere) {
  for (const std::string field : {"data.missing", "data.nothing", "data.nothing.more"}) {
    SCOPED_TRACE(field);
    EXPECT_TRUE(Is(field, "exists", "false"));
    EXPECT_FALSE(Is(field, "exists", "true"));
    EXPECT_FALSE(Is(field, "equals", R"("")"));
    EXPECT_FALSE(Is(field, "equals", "0"));
    EXPECT_FALSE(Is(field, "equals", "false"));
    EXPECT_FALSE(Is(field, "contains", R"("a")"));
    EXPECT_FALSE(Is(field, "less", "1"));
  }
  EXPECT_FALSE(Holds(R"({"field": "data.a", "exists": true})", Event("", "t", "s")));
  EXPECT_TRUE(Holds(R"({"field": "data.a", "exists": false})", Event("", "t", "s")));
}

TEST_F(RuleConditionTest, JoinsTestsByAndOrAndNot) {
  const std::string yes = R"({"field": "type", "exists": true})";
  const std::string no = R"({"field": "type", "exists": false})";
  EXPECT_TRUE(Holds(R"({"and": [)" + yes + "," + yes + "]}"));
  EXPECT_FALSE(Holds(R"({"and": [)" + yes + "," + no + "]}"));
  EXPECT_TRUE(Holds(R"({"or": [)" + no + "," + yes + "]}"));
  EXPECT_FALSE(Holds(R"({"or": [)" + no + "," + no + "]}"));
  EXPECT_TRUE(Holds(R"({"not": )" + no + "}"));
  EXPECT_FALSE(Holds(R"({"not": )" + yes + "}"));
  EXPECT_TRUE(Holds(R"({"and": [{"or": [)" + no + "," + yes + R"(]}, {"not": {"and": [)" + yes +
                    "," + no + "]}}]}"));
  EXPECT_FALSE(Holds(R"({"or": [{"and": [)" + yes + "," + no + R"(]}, {"not": {"or": [)" + no +
                     "," + yes + "]}}]}"));
}

TEST_F(RuleConditionTest, RefusesWhatItDoesNotUnderstand) {
  EXPECT_EQ(ProblemWith("7"), "a condition is an object");
  EXPECT_EQ(ProblemWith(R"({"and": [null]})"), "a condition is an object");
  EXPECT_EQ(ProblemWith("{}"), R"("field" is missing)");
  EXPECT_EQ(ProblemWith(R"({"field": "type"})"), "a test needs a comparison");
  EXPECT_EQ(ProblemWith(R"({"equals": "a"})"), R"("field" is missing)");
  EXPECT_EQ(ProblemWith(R"({"field": "type", "equals": "a", "less": 1})"),
            "a test has one comparison only");
  EXPECT_EQ(ProblemWith(R"({"field": "type", "equals": "a", "else": 1})"),
            R"("else" is not known)");
  EXPECT_EQ(ProblemWith(R"({"field": "type", "matches": "a"})"), "a test needs a comparison");
  EXPECT_EQ(ProblemWith(R"({"xor": []})"), R"("field" is missing)");
  EXPECT_EQ(ProblemWith(R"({"and": [], "or": []})"), R"("field" is missing)");
}

TEST_F(RuleConditionTest, RefusesJointsWithoutTheirOperands) {
  constexpr const char* kNeedAList = R"("and" and "or" need a list of conditions)";
  EXPECT_EQ(ProblemWith(R"({"and": []})"), kNeedAList);
  EXPECT_EQ(ProblemWith(R"({"or": {"field": "type", "exists": true}})"), kNeedAList);
  EXPECT_EQ(ProblemWith(R"({"not": []})"), "a condition is an object");
}

TEST_F(RuleConditionTest, RefusesFieldsThatAreNone) {
  for (const char* field :
       {R"("data")", R"(["data"])", R"("data.")", R"("data..a")", R"(["data", ""])",
        R"(["data", 7])", R"("payload.a")", R"("type.a")", R"("")", "[]", "7", "null", "{}"}) {
    EXPECT_THAT(ProblemWith(std::string(R"({"field": )") + field + R"(, "exists": true})"),
                HasSubstr("field"));
  }
}

TEST_F(RuleConditionTest, RefusesValuesThatCannotBeCompared) {
  constexpr const char* kNoScalar =
      "what a field is compared with is a text, a number, true or false";
  EXPECT_EQ(ProblemWith(R"({"field": "type", "equals": null})"), kNoScalar);
  EXPECT_EQ(ProblemWith(R"({"field": "type", "equals": ["a"]})"), kNoScalar);
  EXPECT_EQ(ProblemWith(R"({"field": "type", "contains": {}})"), kNoScalar);
  EXPECT_EQ(ProblemWith(R"({"field": "type", "contains": ""})"),
            R"("contains" needs a text that is not empty)");
  EXPECT_EQ(ProblemWith(R"({"field": "type", "exists": 1})"), R"("exists" is true or false)");
  EXPECT_EQ(ProblemWith(R"({"field": "type", "greater": "1"})"),
            R"("greater" and "less" need a number)");
  EXPECT_EQ(ProblemWith(R"({"field": "type", "less": true})"),
            R"("greater" and "less" need a number)");
}

// A condition of so many joints, one inside the other.
std::string Nested(std::size_t depth) {
  std::string text;
  for (std::size_t level = 0; level < depth; ++level) text += R"({"not": )";
  text += R"({"field": "type", "exists": true})";
  return text + std::string(depth, '}');
}

TEST_F(RuleConditionTest, BoundsItsDepth) {
  EXPECT_TRUE(Holds(Nested(RuleCondition::kMaxDepth)));
  constexpr const char* kTooDeep = "the condition is nested more than 16 deep";
  EXPECT_EQ(ProblemWith(Nested(RuleCondition::kMaxDepth + 1)), kTooDeep);
  // Deeper than any stack, and than JSON may be.
  std::shared_ptr<Variant> deep = Value(Nested(0));
  for (int level = 0; level < 1'000'000; ++level) {
    deep = Variant::FromVariantMap({{"not", std::move(deep)}});
  }
  std::string problem;
  EXPECT_FALSE(RuleCondition::Read(deep, problem).has_value());
  EXPECT_EQ(problem, kTooDeep);
}

std::string Wide(std::size_t tests) {
  std::string text = R"({"and": [)";
  for (std::size_t test = 0; test < tests; ++test) {
    text += (test == 0 ? "" : ",") + Nested(0);
  }
  return text + "]}";
}

TEST_F(RuleConditionTest, BoundsItsSize) {
  EXPECT_TRUE(Holds(Wide(RuleCondition::kMaxSteps - 1)));
  constexpr const char* kTooLarge = "the condition has more than 200 tests and joints";
  EXPECT_EQ(ProblemWith(Wide(RuleCondition::kMaxSteps)), kTooLarge);
  EXPECT_EQ(ProblemWith(Wide(100'000)), kTooLarge);
}

TEST_F(RuleConditionTest, BoundsTheKeysOfAField) {
  std::string field = "data";
  for (int key = 0; key < 32; ++key) field += ".a";
  EXPECT_FALSE(Is(field, "exists", "true"));
  EXPECT_THAT(ProblemWith(R"({"field": ")" + field + R"(.a", "exists": true})"),
              HasSubstr("1 to 32 keys"));
}

}  // namespace
