#include <future>
#include <stdexcept>

#include "DatabaseFixture.h"
#include "support/WaitUntil.h"

namespace {

using namespace DatabaseTests;
using testing::HasSubstr;
using TestSupport::LogLevel;
using Velmora::Database;
using Velmora::Query;
using Velmora::QueryResult;
using Velmora::Variant;

class DatabaseErrors : public DatabaseFixture {
 protected:
  DatabaseErrors() { Execute(database_, "CREATE TABLE t (id INTEGER PRIMARY KEY)"); }

  void InsertIds(int first, int last) {
    for (int id = first; id <= last; ++id) {
      EXPECT_TRUE(database_.Insert("t", {{"id", Variant::FromInteger(id)}}));
    }
  }
};

std::string PaddedTo(std::size_t length, std::string start, const std::string& end) {
  start.resize(length - end.size(), ' ');
  return start + end;
}

TEST_F(DatabaseErrors, ReadAStatementOf1500BytesToItsEnd) {
  Execute(database_, PaddedTo(1500, "SELECT 7", ""));
  const std::string sql = PaddedTo(1500, "SELECT 7 AS", "x y");
  EXPECT_THAT(ErrorOf([&] { Execute(database_, sql); }), IsQueryError("near \"y\": syntax error"));
  ExpectPrepareError("near \"y\": syntax error");
}

TEST_F(DatabaseErrors, CutAStatementThatIsLongerThan1500Bytes) {
  Execute(database_, PaddedTo(1501, "SELECT 7 AS x", "!"));
  Execute(database_, PaddedTo(1500, "SELECT 7 AS x", "") + " is never read");
  InsertIds(1, 3);
  Query query("t", {"id"});
  query.SetSelection(PaddedTo(1500, "id>1", "") + "AND id<3");
  EXPECT_EQ(Select(database_, query), Rows({{"2"}, {"3"}}));
}

TEST_F(DatabaseErrors, CutAnInsertionOfTooManyColumns) {
  const std::string first(800, 'a');
  const std::string second(800, 'b');
  Execute(database_, "CREATE TABLE wide (" + first + ")");
  Execute(database_, "ALTER TABLE wide ADD " + second);
  EXPECT_THAT(ErrorOf([&] {
                database_.Insert(
                    "wide", {{first, Variant::FromInteger(1)}, {second, Variant::FromInteger(1)}});
              }),
              IsQueryError("incomplete input"));
  ExpectPrepareError("incomplete input");
}

TEST_F(DatabaseErrors, NameTheStatementThatWasCut) {
  InsertIds(1, 1);
  const std::string sql = PaddedTo(1500, "INSERT INTO t VALUES (1)", "");
  EXPECT_THAT(ErrorOf([&] { Execute(database_, sql + "!"); }),
              IsQueryError("UNIQUE constraint failed: t.id"));
  ExpectStepError("UNIQUE constraint failed: t.id", sql);
}

TEST_F(DatabaseErrors, OfTheBinderEndTheRunWithWhatSqliteSaysAndWithoutALine) {
  bool ran = false;
  EXPECT_THAT(ErrorOf([&] {
                database_.RunQuerySqlite("INSERT INTO t VALUES (?)", nullptr, [&](sqlite3_stmt*) {
                  ran = true;
                  return false;
                });
              }),
              IsQueryError("not an error"));
  EXPECT_TRUE(ran);
  EXPECT_EQ(Select(database_, Query("t", {"id"})), Rows());
}

TEST_F(DatabaseErrors, ThatTheBinderThrowsPassThrough) {
  const auto throwOther = [](sqlite3_stmt*) -> bool { throw std::runtime_error("other"); };
  EXPECT_THROW(database_.RunQuerySqlite("SELECT 1", nullptr, throwOther), std::runtime_error);
  EXPECT_EQ(::sqlite3_next_stmt(ConnectionOf(database_), nullptr), nullptr);
}

TEST_F(DatabaseErrors, InTheMiddleOfAResultLeaveTheRowsBefore) {
  InsertIds(1, 2);
  constexpr const char* kSql =
      "SELECT abs(CASE id WHEN 1 THEN id ELSE -9223372036854775808 END) FROM t";
  QueryResult result;
  EXPECT_THAT(ErrorOf([&] { database_.RunQuerySqlite(kSql, &result, {}); }),
              IsQueryError("integer overflow"));
  ExpectStepError("integer overflow", kSql);
  EXPECT_EQ(result.GetCount(), 1);
}

TEST_F(DatabaseErrors, ComeOfALockThatAnotherConnectionHolds) {
  Database other("test.db", folder_.Path().string());
  Execute(other, "BEGIN EXCLUSIVE");
  EXPECT_THAT(ErrorOf([&] {
                database_.Insert("t", {{"id", Variant::FromInteger(1)}});
              }),
              IsQueryError("database is locked"));
  log_.ExpectLine(LogLevel::Debug, "MockDatabaseService",
                  HasSubstr("ERROR inserting data: database is locked. "));
  Execute(other, "COMMIT");
  EXPECT_TRUE(database_.Insert("t", {{"id", Variant::FromInteger(1)}}));
}

TEST_F(DatabaseErrors, MayHoldFormatDirectives) {
  const std::string sql = "SELECT '%s%n%d' FROM missing";
  EXPECT_THAT(ErrorOf([&] { Execute(database_, sql); }), IsQueryError("no such table: missing"));
  ExpectPrepareError("no such table: missing");
  EXPECT_THAT(ErrorOf([&] { Execute(database_, "SELECT 1 FROM \"%s%n\""); }),
              IsQueryError("no such table: %s%n"));
  ExpectPrepareError("no such table: %s%n");
}

TEST_F(DatabaseErrors, LeaveTheDatabaseFreeForOtherThreads) {
  const std::vector<std::function<void()>> failures = {
      [&] { Execute(database_, "SELECT * FROM missing"); },
      [&] { Execute(database_, "INSERT INTO t VALUES ('not a number')"); },
      [&] { Execute(database_, ""); },
      [&] {
        database_.Insert("t", {{"id", Variant::FromNull()}});
      },
      [&] { database_.RunQuerySqlite("SELECT 1", nullptr, [](sqlite3_stmt*) { return false; }); }};
  log_.AllowLines(LogLevel::Debug, "MockDatabaseService", HasSubstr("ERROR inserting data: "));
  int id = 0;
  for (const auto& fail : failures) {
    EXPECT_THAT(ErrorOf(fail), testing::Not(testing::Eq(std::nullopt)));
    ++id;
    auto inserted = std::async(std::launch::async, [&] {
      return database_.Insert("t", {{"id", Variant::FromInteger(id)}});
    });
    ASSERT_EQ(inserted.wait_for(TestSupport::kDefaultDeadline), std::future_status::ready);
    EXPECT_TRUE(inserted.get());
    EXPECT_EQ(::sqlite3_next_stmt(ConnectionOf(database_), nullptr), nullptr);
  }
}

}  // namespace
