#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "modules/RuleSet.h"
#include "support/TemporaryDirectory.h"
#include "unit/core/modules/JsonFixture.h"

namespace {

using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

// The same files are held against the JSON schema by a test of the documents.
class RulesDocumentTest : public JsonFixture {
 protected:
  static std::string Read(const std::string& path) {
    return TestSupport::ReadFileBytes(QEXCORE_SOURCE_FOLDER "/" + path);
  }

  static std::vector<std::string> Examples(const std::string& document) {
    const std::string begin = "\n```json\n";
    const std::string end = "\n```\n";
    std::vector<std::string> examples;
    for (std::size_t place = document.find(begin); place != std::string::npos;
         place = document.find(begin, place)) {
      place += begin.size();
      examples.push_back(document.substr(place, document.find(end, place) - place));
    }
    return examples;
  }
};

TEST_F(RulesDocumentTest, EveryExampleIsUnderstood) {
  const std::vector<std::string> examples = Examples(Read("docs/rules.md"));
  ASSERT_THAT(examples, Not(IsEmpty()));
  for (const std::string& example : examples) {
    const Velmora::VariantMap file = Map(example);
    std::string problem;
    const auto rules = Velmora::ReadRules(file, problem);
    EXPECT_EQ(problem, "");
    ASSERT_TRUE(rules.has_value());
    EXPECT_EQ(rules->size(), file.at("rules")->GetVariantVector().size());
  }
}

TEST_F(RulesDocumentTest, WhatTheSchemaRefusesIsRefused) {
  const auto cases =
      Map("{\"cases\": " + Read("tests/documents/refused_rules.json") + "}").at("cases");
  for (const auto& each : cases->GetVariantVector()) {
    const Velmora::VariantMap& members = each->GetVariantMap();
    SCOPED_TRACE(members.at("why")->GetString());
    std::string problem;
    const auto rules =
        Velmora::ReadRules({{"version", Velmora::Variant::FromLong(1)},
                            {"rules", Velmora::Variant::FromVariantVector({members.at("rule")})}},
                           problem);
    ASSERT_TRUE(rules.has_value());
    EXPECT_THAT(*rules, IsEmpty());
    EXPECT_THAT(log.TakeLines(), SizeIs(1));
  }
}

}  // namespace
