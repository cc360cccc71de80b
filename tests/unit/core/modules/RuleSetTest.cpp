#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "modules/RuleSet.h"
#include "unit/core/modules/JsonFixture.h"

namespace {

using testing::HasSubstr;
using testing::SizeIs;
using TestSupport::LogLevel;
using Velmora::Rule;
using Velmora::RuleSet;
using Velmora::Variant;

constexpr const char* kIf = R"("if": {"field": "type", "exists": true})";
constexpr const char* kThen = R"("then": {"open": {"url": "https://example.com"}})";

class RuleSetTest : public JsonFixture {
 protected:
  static std::string File(const std::string& rules) {
    return R"({"version": 1, "rules": [)" + rules + "]}";
  }
  static std::optional<RuleSet> Read(const std::string& file, std::string& problem) {
    return Velmora::ReadRules(Map(file), problem);
  }
  static RuleSet ReadRules(const std::string& rules) {
    std::string problem;
    std::optional<RuleSet> read = Read(File(rules), problem);
    EXPECT_EQ(problem, "");
    return read.value_or(RuleSet());
  }
  static Rule ReadOne(const std::string& members) {
    const RuleSet rules = ReadRules("{" + members + "}");
    EXPECT_THAT(rules, SizeIs(1));
    return rules.empty() ? Rule() : rules.front();
  }
  static std::string ProblemWithFile(const std::string& file) {
    std::string problem;
    EXPECT_FALSE(Read(file, problem).has_value()) << file;
    return problem;
  }

  // One rule of these members is refused with one line that ends so; its neighbour is not.
  void ExpectRefused(const std::string& members, const std::string& reason) {
    SCOPED_TRACE(members);
    const std::string good = std::string(R"({"id": "good", )") + kIf + "," + kThen + "}";
    const RuleSet rules = ReadRules("{" + members + "}," + good);
    ASSERT_THAT(rules, SizeIs(1));
    EXPECT_EQ(rules.front().id, "good");
    const auto lines = log.TakeLines();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].level, LogLevel::Warning);
    EXPECT_EQ(lines[0].tag, "Rules");
    EXPECT_THAT(lines[0].message, testing::StartsWith("the rule "));
    EXPECT_THAT(lines[0].message, testing::EndsWith(" is not used: " + reason));
  }
  void ExpectConsequencesRefused(const std::string& then, const std::string& reason) {
    ExpectRefused(std::string(R"("id": "bad", )") + kIf + R"(, "then": )" + then, reason);
  }
};

TEST_F(RuleSetTest, ReadsRulesInTheirOrder) {
  const RuleSet rules = ReadRules(std::string(R"({"id": "b", )") + kIf + "," + kThen +
                                  R"(}, {"id": "a", "limit": 7, )" + kIf + "," + kThen +
                                  R"(}, {"id": "c", "once": true, )" + kIf + "," + kThen +
                                  R"(}, {"id": "d", "once": false, )" + kIf + "," + kThen + "}");
  ASSERT_THAT(rules, SizeIs(4));
  EXPECT_EQ(rules[0].id, "b");
  EXPECT_EQ(rules[0].limit, std::nullopt);
  EXPECT_EQ(rules[1].id, "a");
  EXPECT_EQ(rules[1].limit, 7);
  EXPECT_EQ(rules[2].limit, 1);
  EXPECT_EQ(rules[3].limit, std::nullopt);
  EXPECT_THAT(ReadRules(""), SizeIs(0));
}

TEST_F(RuleSetTest, ReadsEveryConsequence) {
  const Rule rule = ReadOne(std::string(R"("id": "all", )") + kIf + R"(, "then": {
    "open": {"url": "mailto:shop@example.com"},
    "button": {"url": "https://example.com/help"},
    "notification": {"text": "Come back", "delay": 3600, "sound": "bell", "category": "shop",
                     "link": "shop://cart", "userInfo": {"a": [1, {"b": null}]}},
    "alert": {"title": "Hello", "message": "Welcome", "positive": "Yes", "negative": "No",
              "url": "https://example.com"}})");
  ASSERT_THAT(rule.consequences, SizeIs(4));
  const auto& alert = std::get<Velmora::AlertConsequence>(rule.consequences[0]);
  EXPECT_EQ(alert.title + alert.message + alert.positive + alert.negative + alert.url,
            "HelloWelcomeYesNohttps://example.com");
  const auto& notification = std::get<Velmora::NotificationConsequence>(rule.consequences[1]);
  EXPECT_EQ(notification.text + notification.sound + notification.category + notification.link,
            "Come backbellshopshop://cart");
  EXPECT_EQ(notification.delay, 3600);
  EXPECT_TRUE(notification.userInfo.contains("a"));
  EXPECT_EQ(std::get<Velmora::ButtonConsequence>(rule.consequences[2]).url,
            "https://example.com/help");
  EXPECT_EQ(std::get<Velmora::OpenConsequence>(rule.consequences[3]).url,
            "mailto:shop@example.com");
  const Rule message = ReadOne(std::string(R"("id": "m", )") + kIf +
                               R"(, "then": {"message": {"html": "wel come.html"}, "button": {}})");
  EXPECT_EQ(std::get<Velmora::MessageConsequence>(message.consequences.at(0)).html,
            "wel come.html");
}

TEST_F(RuleSetTest, RefusesAFileAsAWhole) {
  EXPECT_EQ(ProblemWithFile("{}"), R"("version" is missing)");
  EXPECT_EQ(ProblemWithFile(R"({"version": 1})"), R"("rules" is missing)");
  EXPECT_EQ(ProblemWithFile(R"({"version": 2, "rules": []})"), R"("version" is not 1)");
  EXPECT_EQ(ProblemWithFile(R"({"version": "1", "rules": []})"), R"("version" is not 1)");
  EXPECT_EQ(ProblemWithFile(R"({"version": 1, "rules": {}})"), R"("rules" is not a list)");
  EXPECT_EQ(ProblemWithFile(R"({"version": 1, "rules": [], "then": 1})"), R"("then" is not known)");
  std::string many = "{}";
  for (std::size_t count = 0; count < Velmora::kMaxRules; ++count) many += ",{}";
  EXPECT_EQ(ProblemWithFile(File(many)), R"("rules" has more than 500 elements)");
}

TEST_F(RuleSetTest, RefusesARuleWithMembersThatAreMissingOrNotKnown) {
  const std::string condition = kIf;
  const std::string consequence = kThen;
  ExpectRefused(condition + "," + consequence, R"("id" is missing)");
  ExpectRefused(R"("id": "a", )" + consequence, R"("if" is missing)");
  ExpectRefused(R"("id": "a", )" + condition, R"("then" is missing)");
  ExpectRefused(R"("id": "a", "priority": 1, )" + condition + "," + consequence,
                R"("priority" is not known)");
  ExpectRefused(R"("id": "a", "new\nline": 1, )" + condition + "," + consequence,
                R"("new?line" is not known)");
}

TEST_F(RuleSetTest, RefusesARuleWithMembersOfTheWrongKind) {
  const std::string rest = std::string(",") + kIf + "," + kThen;
  constexpr const char* kBadId =
      R"("id" is not made of letters, digits, ".", "_" and "-", 64 at most)";
  ExpectRefused(R"("id": 7)" + rest, R"("id" is not a text)");
  ExpectRefused(R"("id": "")" + rest, R"("id" is empty)");
  ExpectRefused(R"("id": "a b")" + rest, kBadId);
  ExpectRefused(R"("id": "a\nb")" + rest, kBadId);
  ExpectRefused(R"("id": ")" + std::string(65, 'a') + '"' + rest, kBadId);
  ExpectRefused(R"("id": ")" + std::string(5'000, 'a') + '"' + rest,
                R"("id" is longer than 4096 bytes)");
  ExpectRefused(R"("id": "a", "once": 1)" + rest, R"("once" is not true or false)");
  ExpectRefused(R"("id": "a", "limit": 0)" + rest, R"("limit" is not between 1 and 1000000)");
  ExpectRefused(R"("id": "a", "limit": 1.5)" + rest, R"("limit" is not a whole number)");
  ExpectRefused(R"("id": "a", "once": true, "limit": 2)" + rest,
                R"("once" and "limit" exclude each other)");
  ExpectRefused(R"("id": "a", "if": 7, )" + std::string(kThen), "a condition is an object");
}

TEST_F(RuleSetTest, OfTwoRulesOfOneIdTheFirstCounts) {
  const std::string rest = std::string(",") + kIf + "," + kThen + "}";
  log.ExpectLine(LogLevel::Warning, "Rules",
                 "the rule \"a\" is not used: there is another of its id");
  const RuleSet rules = ReadRules(R"({"id": "a", "limit": 1)" + rest + R"(, {"id": "a")" + rest);
  ASSERT_THAT(rules, SizeIs(1));
  EXPECT_EQ(rules[0].limit, 1);
}

TEST_F(RuleSetTest, RefusesWhatIsNoRule) {
  log.ExpectLine(LogLevel::Warning, "Rules", "the rule number 1 is not used: it is not an object");
  log.ExpectLine(LogLevel::Warning, "Rules", "the rule number 2 is not used: it is not an object");
  EXPECT_THAT(ReadRules("7, null"), SizeIs(0));
}

TEST_F(RuleSetTest, RefusesConsequencesThatItDoesNotUnderstand) {
  ExpectConsequencesRefused("[]", R"("then" is not an object)");
  ExpectConsequencesRefused("{}", "there is no consequence");
  ExpectConsequencesRefused(R"({"explode": {}})", R"("explode" is not known)");
  ExpectConsequencesRefused(R"({"open": {}})", R"(open: "url" is missing)");
  ExpectConsequencesRefused(R"({"open": []})", R"("open" is not an object)");
  ExpectConsequencesRefused(R"({"open": {"url": "https://e.com", "in": "x"}})",
                            R"(open: "in" is not known)");
  ExpectConsequencesRefused(R"({"alert": {"positive": "OK"}})", R"(alert: "message" is missing)");
  ExpectConsequencesRefused(R"({"alert": {"message": "a"}})", R"(alert: "positive" is missing)");
  for (const char* message : {"{}", R"({"html": "a.html", "base64": "PGgxPg=="})"}) {
    ExpectConsequencesRefused(std::string(R"({"message": )") + message + "}",
                              R"(message: it needs either "html" or "base64")");
  }
  ExpectConsequencesRefused(R"({"notification": {"text": "a", "delay": -1}})",
                            R"(notification: "delay" is not between 0 and 31622400)");
  ExpectConsequencesRefused(R"({"notification": {"text": "a", "userInfo": "{}"}})",
                            R"(notification: "userInfo" is not an object)");
  ExpectConsequencesRefused(
      R"({"alert": {"message": "a", "positive": "b"}, "message": {"html": "a.html"}})",
      R"("alert" and "message" exclude each other)");
}

TEST_F(RuleSetTest, RefusesUrlsThatAreNone) {
  for (const char* url : {"example.com", "a:", ":a", "https://a b", "c:\\u0001", "1 2:3", "a:b"}) {
    ExpectConsequencesRefused(std::string(R"({"open": {"url": ")") + url + R"("}})",
                              R"(open: "url" is no URL)");
  }
}

TEST_F(RuleSetTest, RefusesFilesOutsideTheArchive) {
  for (const char* name :
       {"../a.html", "a/b.html", "/etc/passwd", "..", ".", ".hidden", "a\\\\b", "a\\u0000b"}) {
    ExpectConsequencesRefused(std::string(R"({"message": {"html": ")") + name + R"("}})",
                              R"(message: "html" is not the plain name of a file)");
  }
  ExpectConsequencesRefused(R"({"message": {"html": ")" + std::string(256, 'a') + R"("}})",
                            R"(message: "html" is not the plain name of a file)");
}

TEST_F(RuleSetTest, RefusesNestingThatNoStackCouldHold) {
  std::shared_ptr<Variant> deep = Variant::FromNull();
  for (int level = 0; level < 1'000'000; ++level) {
    deep = level % 2 == 0 ? Variant::FromVariantVector({deep})
                          : Variant::FromVariantMap({{"and", deep}});
  }
  Velmora::VariantMap rule = Map(std::string(R"({"id": "deep", )") + kThen + "}");
  rule.insert_or_assign("if", deep);
  const Velmora::VariantMap file{
      {"version", Variant::FromLong(1)},
      {"rules", Variant::FromVariantVector({Variant::FromVariantMap(std::move(rule))})}};
  log.ExpectLine(LogLevel::Warning, "Rules",
                 HasSubstr("the condition is nested more than 16 deep"));
  std::string problem;
  const auto rules = Velmora::ReadRules(file, problem);
  ASSERT_TRUE(rules.has_value());
  EXPECT_THAT(*rules, SizeIs(0));
}

// Values of every kind, which may stand anywhere.
std::shared_ptr<Variant> AnyValue(std::mt19937& random) {
  const Velmora::VariantVector values{nullptr,
                                      Variant::FromNull(),
                                      Variant::FromBoolean(true),
                                      Variant::FromLong(-1),
                                      Variant::FromDouble(0.5),
                                      Variant::FromString(""),
                                      Variant::FromString("data.a"),
                                      Variant::FromString("../a"),
                                      Variant::FromVariantVector({}),
                                      Variant::FromVariantVector({nullptr}),
                                      Variant::FromVariantMap({}),
                                      Variant::FromVariantMap({{"and", nullptr}})};
  return values[random() % values.size()];
}

// The same, with something in it replaced, left out or put in.
std::shared_ptr<Variant> Spoilt(const std::shared_ptr<Variant>& value, std::mt19937& random) {
  if (value == nullptr || random() % 6 == 0) return AnyValue(random);
  if (value->GetKind() == Velmora::VariantKind::VariantVector) {
    Velmora::VariantVector elements = value->GetVariantVector();
    if (elements.empty()) return value;
    std::shared_ptr<Variant>& element = elements[random() % elements.size()];
    element = Spoilt(element, random);
    return Variant::FromVariantVector(std::move(elements));
  }
  if (value->GetKind() != Velmora::VariantKind::VariantMap) return value;
  Velmora::VariantMap members = value->GetVariantMap();
  if (members.empty() || random() % 8 == 0) {
    members.insert_or_assign("more", AnyValue(random));
  } else {
    const auto member =
        std::next(members.begin(), static_cast<std::ptrdiff_t>(random() % members.size()));
    member->second = Spoilt(member->second, random);
    if (random() % 8 == 0) members.erase(member);
  }
  return Variant::FromVariantMap(std::move(members));
}

TEST_F(RuleSetTest, WithstandsEveryKindOfSpoiltFile) {
  log.AllowLines(LogLevel::Warning, "Rules", testing::_);
  const std::shared_ptr<Variant> whole = Value(File(R"({"id": "a", "if": {"and": [
      {"or": [{"field": "data.a.b", "equals": 1}, {"not": {"field": "name", "contains": "x"}}]},
      {"field": ["data", "a"], "exists": true}, {"field": "data.c", "greater": 1}]},
      "then": {"message": {"html": "a.html"}, "button": {"url": "https://example.com"},
               "notification": {"text": "b", "delay": 1, "userInfo": {"c": [1]}}}, "limit": 2})"));
  const Velmora::Event event(
      "x", "t", "s", std::make_shared<Velmora::EventData>(Map(R"({"a": {"b": 1}, "c": "2"})")));
  std::mt19937 random(20260305);
  int understood = 0;
  for (int round = 0; round < 20'000; ++round) {
    const std::shared_ptr<Variant> spoilt = Spoilt(whole, random);
    if (spoilt == nullptr || spoilt->GetKind() != Velmora::VariantKind::VariantMap) continue;
    std::string problem;
    const auto rules = Velmora::ReadRules(spoilt->GetVariantMap(), problem);
    EXPECT_EQ(rules.has_value(), problem.empty());
    for (const Rule& rule : rules.value_or(RuleSet())) {
      rule.condition.Holds(event);
      ++understood;
    }
  }
  EXPECT_GT(understood, 100) << "nearly everything is refused, so that little is tried";
}

}  // namespace
