#include <random>

#include <gtest/gtest.h>

#include "services/database/SqlText.h"

namespace {

using Velmora::Query;
using Velmora::Variant;
namespace SqlText = Velmora::SqlText;

std::map<std::string, std::shared_ptr<Variant>> Columns(const std::vector<std::string>& names) {
  std::map<std::string, std::shared_ptr<Variant>> values;
  for (const std::string& name : names) values.emplace(name, Variant::FromInteger(1));
  return values;
}

TEST(SqlText, PutsEachArgumentInThePlaceOfTheFirstMarkThatIsLeft) {
  EXPECT_EQ(SqlText::SubstituteArguments("a=? AND b=?", {"1", "'x'"}), "a=1 AND b='x'");
  EXPECT_EQ(SqlText::SubstituteArguments("a=? AND b=?", {"1"}), "a=1 AND b=?");
  EXPECT_EQ(SqlText::SubstituteArguments("a=?", {"1", "2"}), "a=1");
  EXPECT_EQ(SqlText::SubstituteArguments("a=1", {"2"}), "a=1");
  EXPECT_EQ(SqlText::SubstituteArguments("", {"2"}), "");
  EXPECT_EQ(SqlText::SubstituteArguments("?", {""}), "");
}

TEST(SqlText, ReplacesMarksThatAnEarlierArgumentBrought) {
  EXPECT_EQ(SqlText::SubstituteArguments("a=? AND b=?", {"'?'", "1"}), "a='1' AND b=?");
  EXPECT_EQ(SqlText::SubstituteArguments("?", {"??", "1", "2"}), "12");
  EXPECT_EQ(SqlText::SubstituteArguments("?-?", {"<?>", "?", "x"}), "<x>-?");
}

TEST(SqlText, SubstitutesAsReplacingOneByOneDoes) {
  std::mt19937 random(20240607);
  const auto text = [&] {
    std::string made;
    for (auto length = random() % 6; length > 0; --length) made += "a?"[random() % 2];
    return made;
  };
  for (int round = 0; round < 2'000; ++round) {
    const std::string clause = text() + text();
    std::vector<std::string> arguments;
    for (auto count = random() % 6; count > 0; --count) arguments.push_back(text());
    std::string expected = clause;
    for (const std::string& argument : arguments) {
      if (const auto mark = expected.find('?'); mark != std::string::npos) {
        expected.replace(mark, 1, argument);
      }
    }
    ASSERT_EQ(SqlText::SubstituteArguments(clause, arguments), expected) << clause;
  }
}

TEST(SqlText, SubstitutesManyArgumentsInALongClauseInShortTime) {
  constexpr std::size_t kMarks = 1'000'000;
  const std::string clause(kMarks, '?');
  const std::string text =
      SqlText::SubstituteArguments(clause, std::vector<std::string>(kMarks, "0123456789"));
  EXPECT_EQ(text.size(), 10 * kMarks);
  EXPECT_EQ(SqlText::SubstituteArguments(std::string(10'000'000, 'a'),
                                         std::vector<std::string>(100'000, "?"))
                .size(),
            10'000'000U);
}

TEST(SqlText, AsksForATableByItsName) {
  EXPECT_EQ(SqlText::TableExists("hits"),
            "SELECT name FROM sqlite_master WHERE type='table' AND name='hits'");
  EXPECT_EQ(SqlText::TableExists("x' OR '1'='1"),
            "SELECT name FROM sqlite_master WHERE type='table' AND name='x' OR '1'='1'");
}

TEST(SqlText, InsertsOneParameterForEachColumnInTheOrderOfTheirNames) {
  EXPECT_EQ(SqlText::Insert("t", Columns({"b", "a", "B"})),
            "INSERT INTO t (B, a, b) VALUES (?, ?, ?);");
  EXPECT_EQ(SqlText::Insert("t", Columns({"a"})), "INSERT INTO t (a) VALUES (?);");
  EXPECT_EQ(SqlText::Insert("t", {}), "INSERT INTO t () VALUES ();");
}

TEST(SqlText, SelectsEveryColumnUnlessSomeAreNamed) {
  EXPECT_EQ(SqlText::Select(Query("t")), "SELECT * FROM t ");
  EXPECT_EQ(SqlText::Select(Query("t", {"a"})), "SELECT a FROM t ");
  EXPECT_EQ(SqlText::Select(Query("t", {"a", "count(*)"})), "SELECT a, count(*) FROM t ");
}

TEST(SqlText, SelectsWithTheClausesThatAreNotEmpty) {
  Query query("t", {"a"});
  query.SetSelection("a>? AND b=?", {"1", "'x'"})
      .SetGroupBy("a")
      .SetHaving("count(*)>1")
      .SetOrderBy("a DESC")
      .SetLimit("5");
  EXPECT_EQ(SqlText::Select(query),
            "SELECT a FROM t  WHERE a>1 AND b='x' GROUP BY a  HAVING count(*)>1  ORDER BY a DESC  "
            "LIMIT 5 ");
  EXPECT_EQ(SqlText::Select(Query("t").SetLimit("5")), "SELECT * FROM t  LIMIT 5 ");
  EXPECT_EQ(SqlText::Select(Query("t").SetSelection("a=1")), "SELECT * FROM t  WHERE a=1");
}

TEST(SqlText, KeepsTheWhereOfASelectionThatItsArgumentsMakeEmpty) {
  EXPECT_EQ(SqlText::Select(Query("t").SetSelection("?", {""})), "SELECT * FROM t  WHERE ");
}

TEST(SqlText, UpdatesOneParameterForEachColumn) {
  EXPECT_EQ(SqlText::Update("t", Columns({"b", "a"}), "", {}), "Update t SET a=?, b=?");
  EXPECT_EQ(SqlText::Update("t", Columns({"a"}), "b=?", {"7"}), "Update t SET a=? WHERE b=7");
  EXPECT_EQ(SqlText::Update("t", {}, "", {}), "Update t SET ");
}

TEST(SqlText, UpdatesEveryRowWhereTheArgumentsMakeTheClauseEmpty) {
  EXPECT_EQ(SqlText::Update("t", Columns({"a"}), "?", {""}), "Update t SET a=?");
}

TEST(SqlText, DeletesEveryRowOnlyWithoutAClause) {
  EXPECT_EQ(SqlText::Delete("t", "", {}), "DELETE FROM t");
  EXPECT_EQ(SqlText::Delete("t", "", {"a"}), "DELETE FROM t");
  EXPECT_EQ(SqlText::Delete("t", "a=?", {"7"}), "DELETE FROM t WHERE a=7");
  EXPECT_EQ(SqlText::Delete("t", "?", {""}), "DELETE FROM t WHERE ");
}

TEST(SqlText, DropsATable) { EXPECT_EQ(SqlText::DropTable("t"), "DROP TABLE IF EXISTS t"); }

}  // namespace
