#include "DatabaseFixture.h"
#include "VelmoraCore/Log.h"

namespace {

using namespace DatabaseTests;
using testing::ElementsAre;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using TestSupport::LogLine;
using Type = Velmora::DatabaseInterface::ColumnDataType;
using Constraint = Velmora::DatabaseInterface::ColumnConstraint;
using Velmora::Database;
using Velmora::LoggingMode;
using Velmora::Query;
using Velmora::QueryResult;
using Velmora::Variant;

class DatabaseStatements : public DatabaseFixture {
 protected:
  // Three rows: (1, "a"), (2, "b"), (3, "b").
  void MakeLetters() {
    EXPECT_TRUE(database_.CreateTable("letters", {"id", "letter"}, {Type::Integer, Type::Text},
                                      {{Constraint::PrimaryKey}, {}}));
    int id = 0;
    for (const char* letter : {"a", "b", "b"}) {
      EXPECT_TRUE(database_.Insert("letters", {{"id", Variant::FromInteger(++id)},
                                               {"letter", Variant::FromString(letter)}}));
    }
  }

  Rows Letters(const std::string& selection = "", const std::vector<std::string>& arguments = {}) {
    return Select(database_, Query("letters", {"id", "letter"}).SetSelection(selection, arguments));
  }
};

TEST_F(DatabaseStatements, CreateTableMakesTheTableOnce) {
  EXPECT_TRUE(database_.CreateTable("t", {"a"}, {Type::Text}, {{}}));
  EXPECT_TRUE(database_.CreateTable("t", {"b"}, {Type::Text}, {{}}));
  EXPECT_TRUE(database_.Insert("t", {{"a", Variant::FromString("x")}}));
}

TEST_F(DatabaseStatements, CreateTableObeysTheConstraints) {
  EXPECT_TRUE(database_.CreateTable("t", {"id", "name"}, {Type::Integer, Type::Text},
                                    {{Constraint::PrimaryKey, Constraint::AutoIncrement},
                                     {Constraint::NotNull, Constraint::Unique}}));
  EXPECT_TRUE(database_.Insert("t", {{"name", Variant::FromString("x")}}));
  EXPECT_EQ(Select(database_, Query("t", {"id", "name"})), Rows({{"1", "x"}}));

  EXPECT_THAT(ErrorOf([&] {
                database_.Insert("t", {{"name", Variant::FromString("x")}});
              }),
              IsQueryError("UNIQUE constraint failed: t.name"));
  ExpectStepError("UNIQUE constraint failed: t.name", "INSERT INTO t (name) VALUES (?);");
  EXPECT_THAT(ErrorOf([&] {
                database_.Insert("t", {{"id", Variant::FromInteger(5)}});
              }),
              IsQueryError("NOT NULL constraint failed: t.name"));
  ExpectStepError("NOT NULL constraint failed: t.name", "INSERT INTO t (id) VALUES (?);");
}

TEST_F(DatabaseStatements, CreateTableWithoutAStatementFails) {
  EXPECT_THAT(ErrorOf([&] {
                database_.CreateTable("t", {"a", "b"}, {Type::Text}, {{}});
              }),
              IsQueryError("not an error"));
  ExpectStepError("not an error", "");
}

TEST_F(DatabaseStatements, InsertsNothingIntoATableThatDoesNotExist) {
  EXPECT_THAT(ErrorOf([&] {
                database_.Insert("t", {{"a", Variant::FromInteger(1)}});
              }),
              IsQueryError("Table does not exist\n"));
}

TEST_F(DatabaseStatements, InsertKnowsATableByItsExactNameOnly) {
  Execute(database_, "CREATE TABLE Hits (a)");
  EXPECT_THAT(ErrorOf([&] {
                database_.Insert("hits", {{"a", Variant::FromInteger(1)}});
              }),
              IsQueryError("Table does not exist\n"));
  EXPECT_TRUE(database_.Insert("Hits", {{"a", Variant::FromInteger(1)}}));
}

TEST_F(DatabaseStatements, InsertOfNoValuesFails) {
  Execute(database_, "CREATE TABLE t (a)");
  EXPECT_THAT(ErrorOf([&] { database_.Insert("t", {}); }),
              IsQueryError("near \")\": syntax error"));
  ExpectPrepareError("near \")\": syntax error");
}

TEST_F(DatabaseStatements, InsertBindsEachValueToItsColumnWhateverTheOrderInTheTable) {
  Execute(database_, "CREATE TABLE t (z, y, x)");
  EXPECT_TRUE(database_.Insert("t", {{"x", Variant::FromString("1")},
                                     {"y", Variant::FromString("2")},
                                     {"z", Variant::FromString("3")}}));
  EXPECT_EQ(Select(database_, Query("t", {"x", "y", "z"})), Rows({{"1", "2", "3"}}));
}

TEST_F(DatabaseStatements, RunQueryGivesEveryColumnInTheOrderOfTheTable) {
  MakeLetters();
  const auto result = database_.RunQuery(std::make_shared<Query>("letters"));
  ASSERT_EQ(result->GetCount(), 3);
  EXPECT_EQ(RowsOf(*result, 2), Rows({{"1", "a"}, {"2", "b"}, {"3", "b"}}));
}

TEST_F(DatabaseStatements, RunQueryGivesANewResultEachTime) {
  MakeLetters();
  const auto query = std::make_shared<Query>("letters");
  const auto first = database_.RunQuery(query);
  first->Close();
  EXPECT_EQ(database_.RunQuery(query)->GetCount(), 3);
}

TEST_F(DatabaseStatements, RunQueryObeysEveryClause) {
  MakeLetters();
  EXPECT_EQ(Letters("id>? AND letter=?", {"1", "'b'"}), Rows({{"2", "b"}, {"3", "b"}}));
  EXPECT_EQ(
      Select(database_,
             Query("letters", {"letter", "count(*)"}).SetGroupBy("letter").SetHaving("count(*)>1")),
      Rows({{"b", "2"}}));
  EXPECT_EQ(Select(database_, Query("letters", {"id"}).SetOrderBy("id DESC").SetLimit("2")),
            Rows({{"3"}, {"2"}}));
}

TEST_F(DatabaseStatements, RunQueryGivesAnEmptyResultWhereNothingFits) {
  MakeLetters();
  EXPECT_EQ(Letters("id=9"), Rows());
}

TEST_F(DatabaseStatements, ArgumentsBecomePartOfTheStatementAsTheyStand) {
  MakeLetters();
  EXPECT_EQ(Letters("id=?", {"1 OR id=3"}), Rows({{"1", "a"}, {"3", "b"}}));
  EXPECT_EQ(Letters("letter=? AND id<3", {"'?'", "b"}), Rows({{"2", "b"}}));
  EXPECT_THAT(ErrorOf([&] { Letters("letter=?", {"b"}); }), IsQueryError("no such column: b"));
  ExpectPrepareError("no such column: b");
}

TEST_F(DatabaseStatements, AMarkThatIsLeftStandsForNull) {
  MakeLetters();
  EXPECT_EQ(Letters("id=?"), Rows());
}

TEST_F(DatabaseStatements, RunQueryOfATableThatDoesNotExistFails) {
  EXPECT_THAT(ErrorOf([&] { database_.RunQuery(std::make_shared<Query>("t")); }),
              IsQueryError("no such table: t"));
  ExpectPrepareError("no such table: t");
}

TEST_F(DatabaseStatements, RunQueryWithoutAQueryFails) {
  EXPECT_THAT(ErrorOf([&] { database_.RunQuery(nullptr); }), IsQueryError("No query was given"));
}

TEST_F(DatabaseStatements, UpdateChangesTheRowsForWhichTheClauseHolds) {
  MakeLetters();
  EXPECT_TRUE(database_.Update("letters", {{"letter", Variant::FromString("c")}}, "id=?", {"2"}));
  EXPECT_EQ(Letters(), Rows({{"1", "a"}, {"2", "c"}, {"3", "b"}}));
}

TEST_F(DatabaseStatements, UpdateChangesEveryRowWithoutAClause) {
  MakeLetters();
  EXPECT_TRUE(database_.Update("letters", {{"letter", Variant::FromString("c")}}, "", {}));
  EXPECT_TRUE(database_.Update("letters", {{"letter", Variant::FromString("d")}}, "?", {""}));
  EXPECT_EQ(Letters("letter='d'"), Rows({{"1", "d"}, {"2", "d"}, {"3", "d"}}));
}

TEST_F(DatabaseStatements, UpdateThatFindsNoRowSucceeds) {
  MakeLetters();
  EXPECT_TRUE(database_.Update("letters", {{"letter", Variant::FromString("c")}}, "id=9", {}));
}

TEST_F(DatabaseStatements, UpdateOfNoValuesFails) {
  MakeLetters();
  EXPECT_THAT(ErrorOf([&] { database_.Update("letters", {}, "", {}); }),
              IsQueryError("incomplete input"));
  ExpectPrepareError("incomplete input");
}

TEST_F(DatabaseStatements, UpdateDoesNotAskWhetherTheTableExists) {
  EXPECT_THAT(ErrorOf([&] {
                database_.Update("t", {{"a", Variant::FromInteger(1)}}, "", {});
              }),
              IsQueryError("no such table: t"));
  ExpectPrepareError("no such table: t");
}

TEST_F(DatabaseStatements, DeleteRemovesTheRowsForWhichTheClauseHolds) {
  MakeLetters();
  EXPECT_TRUE(database_.Delete("letters", "letter=? AND id>?", {"'b'", "2"}));
  EXPECT_EQ(Letters(), Rows({{"1", "a"}, {"2", "b"}}));
}

TEST_F(DatabaseStatements, DeleteRemovesEveryRowWithoutAClause) {
  MakeLetters();
  EXPECT_TRUE(database_.Delete("letters", "", {}));
  EXPECT_EQ(Letters(), Rows());
}

TEST_F(DatabaseStatements, DeleteWithAClauseThatItsArgumentsMakeEmptyFails) {
  MakeLetters();
  EXPECT_THAT(ErrorOf([&] { database_.Delete("letters", "?", {""}); }),
              IsQueryError("incomplete input"));
  ExpectPrepareError("incomplete input");
  EXPECT_EQ(Letters().size(), 3U);
}

TEST_F(DatabaseStatements, DeleteTableDropsItAndSucceedsWithoutOne) {
  MakeLetters();
  EXPECT_TRUE(database_.DeleteTable("letters"));
  EXPECT_FALSE(database_.TableExistQuery("letters"));
  EXPECT_TRUE(database_.DeleteTable("letters"));
}

TEST_F(DatabaseStatements, TableExistQueryIsTrueForExactlyOneTable) {
  EXPECT_FALSE(database_.TableExistQuery("t"));
  Execute(database_, "CREATE TABLE t (a)");
  Execute(database_, "CREATE VIEW v AS SELECT 1");
  EXPECT_TRUE(database_.TableExistQuery("t"));
  EXPECT_FALSE(database_.TableExistQuery("v"));
  EXPECT_FALSE(database_.TableExistQuery(""));
  EXPECT_TRUE(database_.TableExistQuery("x' OR name='t"));
  Execute(database_, "CREATE TABLE u (a)");
  EXPECT_FALSE(database_.TableExistQuery("x' OR '1'='1"));
}

TEST_F(DatabaseStatements, CloseDoesNothing) {
  MakeLetters();
  database_.Close();
  database_.Close();
  EXPECT_EQ(Letters().size(), 3U);
}

TEST_F(DatabaseStatements, OnlyTheFirstStatementOfATextRuns) {
  MakeLetters();
  Execute(database_, "DELETE FROM letters WHERE id=1; DELETE FROM letters");
  EXPECT_EQ(Letters().size(), 2U);
}

TEST_F(DatabaseStatements, RowsWithoutAResultAreDropped) {
  MakeLetters();
  Execute(database_, "SELECT * FROM letters");
  EXPECT_TRUE(database_.Update("letters", {{"letter", Variant::FromString("c")}},
                               "id<? RETURNING id", {"3"}));
  EXPECT_EQ(Letters("letter='c'").size(), 2U);
}

TEST_F(DatabaseStatements, RowsAreAppendedToTheResultThatIsGiven) {
  MakeLetters();
  QueryResult result;
  for (int run = 0; run < 2; ++run) {
    EXPECT_TRUE(database_.RunQuerySqlite("SELECT id FROM letters", &result, {}));
  }
  EXPECT_EQ(RowsOf(result, 1), Rows({{"1"}, {"2"}, {"3"}, {"1"}, {"2"}, {"3"}}));
}

TEST_F(DatabaseStatements, LogTheirCellsAndTheTextOfADeletion) {
  MakeLetters();
  Velmora::Log::SetLogLevel(LoggingMode::Trace);
  Select(database_, Query("letters", {"id", "letter AS l"}).SetSelection("id<3"));
  database_.Insert("letters", {{"letter", Variant::FromString("c")}});
  database_.Delete("letters", "id=?", {"2"});
  Velmora::Log::SetLogLevel(LoggingMode::Debug);
  const auto line = [](const std::string& message) {
    return LogLine{LogLevel::Debug, "DatabaseService", message};
  };
  EXPECT_THAT(log_.TakeLines(),
              ElementsAre(line("QueryResult: <id> = 1"), line("QueryResult: <l> = a"),
                          line("QueryResult: <id> = 2"), line("QueryResult: <l> = b"),
                          line("QueryResult: <name> = letters"),
                          line("sql delete statement DELETE FROM letters WHERE id=2.\n")));
}

TEST(DatabaseObject, IsAnObjectOfTheCore) {
  const LogCapture log(LoggingMode::Debug);
  const auto database = std::make_shared<Database>("", "");
  EXPECT_EQ(Velmora::ObjectToSharedPtr(*database), database);
}

}  // namespace
