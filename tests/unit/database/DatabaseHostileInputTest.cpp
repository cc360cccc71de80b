#include <random>

#include "DatabaseFixture.h"
#include "support/FaultySqliteVfs.h"

namespace {

using namespace DatabaseTests;
using namespace std::string_literals;
using testing::StartsWith;
using TestSupport::LogLevel;
using Type = Velmora::DatabaseInterface::ColumnDataType;
using Velmora::Database;
using Velmora::Query;
using Velmora::Variant;

class DatabaseHostileInput : public DatabaseFixture {
 protected:
  DatabaseHostileInput() {
    Execute(database_, "CREATE TABLE t (a)");
    log_.AllowLines(LogLevel::Debug, "MockDatabaseService", StartsWith("ERROR inserting data: "));
  }

  void Insert(const std::string& table, const std::string& column, const std::string& value) {
    database_.Insert(table, {{column, Variant::FromString(value)}});
  }
};

// Each takes part of a statement's text.
using Attempt = std::function<void(Database&, const std::string& text)>;

const std::vector<Attempt> kAttempts = {
    [](Database& database, const std::string& text) {
      database.CreateTable(text, {"a"}, {Type::Text}, {{}});
    },
    [](Database& database, const std::string& text) {
      database.CreateTable("u", {text}, {Type::Text}, {{}});
    },
    [](Database& database, const std::string& text) {
      database.Insert(text, {{"a", Variant::FromInteger(1)}});
    },
    [](Database& database, const std::string& text) {
      database.Insert("t", {{text, Variant::FromInteger(1)}});
    },
    [](Database& database, const std::string& text) { Select(database, Query(text)); },
    [](Database& database, const std::string& text) { Select(database, Query("t", {text})); },
    [](Database& database, const std::string& text) {
      Select(database, Query("t").SetSelection(text));
    },
    [](Database& database, const std::string& text) {
      Select(database, Query("t").SetSelection("a=?", {text}));
    },
    [](Database& database, const std::string& text) {
      Select(database, Query("t").SetGroupBy(text).SetHaving(text).SetOrderBy(text).SetLimit(text));
    },
    [](Database& database, const std::string& text) {
      database.Update(text, {{"a", Variant::FromInteger(1)}}, "", {});
    },
    [](Database& database, const std::string& text) {
      database.Update("t", {{text, Variant::FromInteger(1)}}, "", {});
    },
    [](Database& database, const std::string& text) {
      database.Update("t", {{"a", Variant::FromInteger(1)}}, text, {text, "?"});
    },
    [](Database& database, const std::string& text) { database.Delete(text, "", {}); },
    [](Database& database, const std::string& text) { database.Delete("t", text, {text}); },
    [](Database& database, const std::string& text) { database.DeleteTable(text); },
    [](Database& database, const std::string& text) { database.TableExistQuery(text); },
};

class HostileText : public DatabaseHostileInput, public testing::WithParamInterface<std::string> {};

// Whether SQLite makes sense of the text does not matter here; that it does no harm does.
TEST_P(HostileText, EndsInAQueryErrorOrInSuccess) {
  for (const Attempt& attempt : kAttempts) {
    const auto error = ErrorOf([&] { attempt(database_, GetParam()); });
    if (error) {
      EXPECT_THAT(error, IsQueryError(testing::_));
    }
    EXPECT_EQ(::sqlite3_next_stmt(ConnectionOf(database_), nullptr), nullptr);
  }
}

INSTANTIATE_TEST_SUITE_P(Any, HostileText,
                         testing::Values(""s, "\0"s, "a\0b"s, "\xFF\xFE"s, "\xED\xA0\x80"s, "'"s,
                                         "\""s, "["s, ";"s, "--"s, "/*"s, "?"s, "?999999999"s,
                                         ":x"s, "%s%n"s, "((((((((((("s, "a b"s,
                                         std::string(2'000, '('), std::string(1'000, '-'),
                                         std::string(10'000'000, 'a'),
                                         std::string(10'000'000, '?')));

TEST_F(DatabaseHostileInput, EmptyNamesAreErrors) {
  EXPECT_THAT(ErrorOf([&] { Insert("", "a", "x"); }), IsQueryError("Table does not exist\n"));
  EXPECT_THAT(ErrorOf([&] { Insert("t", "", "x"); }), IsQueryError("near \")\": syntax error"));
  EXPECT_THAT(ErrorOf([&] { Select(database_, Query("")); }), IsQueryError("incomplete input"));
  EXPECT_THAT(ErrorOf([&] { database_.Delete("", "", {}); }), IsQueryError("incomplete input"));
  EXPECT_THAT(ErrorOf([&] { database_.DeleteTable(""); }), IsQueryError("incomplete input"));
  EXPECT_THAT(ErrorOf([&] { database_.CreateTable("", {"a"}, {Type::Text}, {{}}); }),
              IsQueryError("not an error"));
}

TEST_F(DatabaseHostileInput, AZeroByteEndsTheStatement) {
  Insert("t", "a", "x");
  EXPECT_EQ(Select(database_, Query("t\0 no longer read"s, {"a"})), Rows({{"x"}}));
  EXPECT_THAT(ErrorOf([&] { Insert("t\0"s, "a", "x"); }),
              IsQueryError("unrecognized token: \"'t\""));
}

TEST_F(DatabaseHostileInput, NamesNeedNotBeUtf8) {
  EXPECT_TRUE(database_.CreateTable("\xFF", {"\xFE"}, {Type::Text}, {{}}));
  Insert("\xFF", "\xFE", "x");
  EXPECT_EQ(Select(database_, Query("\xFF", {"\xFE"})), Rows({{"x"}}));
}

TEST_F(DatabaseHostileInput, ManyColumnsAndValuesAreErrorsAndNoHarm) {
  Values values;
  std::vector<std::string> names;
  for (int column = 0; column < 100'000; ++column) {
    names.push_back("c" + std::to_string(column));
    values.emplace(names.back(), Variant::FromInteger(column));
  }
  EXPECT_THAT(ErrorOf([&] { database_.Insert("t", values); }), IsQueryError(testing::_));
  EXPECT_THAT(ErrorOf([&] { database_.Update("t", values, "", {}); }), IsQueryError(testing::_));
  EXPECT_THAT(ErrorOf([&] { Select(database_, Query("t", names)); }), IsQueryError(testing::_));
}

TEST(DatabaseHostileFile, EndsInDocumentedErrorsOrInSuccess) {
  const TestSupport::TemporaryDirectory folder;
  const TestSupport::FaultySqliteVfs neverWaitsForTheDisk;
  TestSupport::LogCapture log(Velmora::LoggingMode::Debug);
  log.AllowLines(LogLevel::Debug, "MockDatabaseService", StartsWith("ERROR inserting data: "));
  const std::string path = folder.Path().string();
  {
    Database database("a.db", path);
    Execute(database, "CREATE TABLE t (id INTEGER PRIMARY KEY, a TEXT)");
    Execute(database, "CREATE INDEX i ON t (a)");
    for (int id = 0; id < 30; ++id) {
      database.Insert("t", {{"a", Variant::FromString(std::string(300, 'x'))}});
    }
  }
  const std::string sound = TestSupport::ReadFileBytes(folder.PathOf("a.db"));
  std::mt19937 random(20240607);
  int failures = 0;
  for (int round = 0; round < 200; ++round) {
    std::string damaged = sound;
    // Mostly in the first page, which tells SQLite how to read all others.
    const std::size_t range = round % 2 == 0 ? 512 : damaged.size();
    for (auto changes = 1 + random() % 20; changes > 0; --changes) {
      damaged[random() % range] = static_cast<char>(random());
    }
    if (round % 10 == 0) damaged.resize(random() % damaged.size());
    folder.WriteFile("b.db", damaged);
    Database database("b.db", path);
    const std::vector<std::function<void()>> steps = {
        [&] {
          Select(database, Query("t", {"id", "a"}));
        },
        [&] {
          database.Insert("t", {{"a", Variant::FromString("y")}});
        },
        [&] {
          database.Update("t", {{"a", Variant::FromString("z")}}, "id<9", {});
        },
        [&] { database.Delete("t", "a='z'", {}); }, [&] { database.DeleteTable("t"); }};
    for (const auto& step : steps) {
      if (const auto error = ErrorOf(step)) {
        ++failures;
        EXPECT_THAT(error, IsQueryError(testing::Not(testing::IsEmpty())));
      }
    }
    EXPECT_EQ(::sqlite3_next_stmt(ConnectionOf(database), nullptr), nullptr);
  }
  EXPECT_GT(failures, 0);
}

TEST(DatabaseHostileFile, CannotReachBehindTheTables) {
  const TestSupport::TemporaryDirectory folder;
  TestSupport::LogCapture log(Velmora::LoggingMode::Debug);
  log.AllowLines(LogLevel::Debug, "MockDatabaseService", StartsWith("ERROR inserting data: "));
  Database database("a.db", folder.Path().string());
  Execute(database, "CREATE TABLE t (a)");
  Execute(database, "PRAGMA writable_schema=ON");
  EXPECT_THAT(ErrorOf([&] { database.Delete("sqlite_master", "", {}); }),
              IsQueryError("table sqlite_master may not be modified"));
  EXPECT_TRUE(database.TableExistQuery("t"));
}

TEST_F(DatabaseHostileInput, AMissingStatementIsAnError) {
  EXPECT_THAT(ErrorOf([&] { database_.RunQuerySqlite(nullptr, nullptr, {}); }),
              IsQueryError("No statement was given"));
}

}  // namespace
