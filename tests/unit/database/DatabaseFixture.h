#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Query.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/Variant.h"
#include "services/database/Database.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"

namespace DatabaseTests {

using Rows = std::vector<std::vector<std::string>>;
using Values = std::map<std::string, std::shared_ptr<Velmora::Variant>>;

// The SdkError that `attempt` throws; nothing when it throws none. Its origin must be named.
inline std::optional<Velmora::SdkError> ErrorOf(const std::function<void()>& attempt) {
  try {
    attempt();
  } catch (const Velmora::SdkError& error) {
    EXPECT_THAT(error.GetDebugInfo().GetSourceLocation(),
                testing::StartsWith("src/services/database/"));
    EXPECT_GT(error.GetDebugInfo().GetLine(), 0);
    return error;
  }
  return std::nullopt;
}

MATCHER_P2(IsError, code, message, "") {
  if (!arg.has_value()) {
    *result_listener << "nothing was thrown";
    return false;
  }
  *result_listener << arg->what();
  return arg->GetCode() == code &&
         testing::SafeMatcherCast<std::string>(message).Matches(arg->GetMessage());
}

template <class Message>
auto IsQueryError(Message message) {
  return IsError(Velmora::ErrorCodes::kDatabaseQueryExecError, message);
}

inline void Execute(Velmora::Database& database, const std::string& sql) {
  EXPECT_TRUE(database.RunQuerySqlite(sql.c_str(), nullptr, {}));
}

// Cell by cell, through the interface.
inline Rows RowsOf(Velmora::QueryResultInterface& result, std::uint32_t columns) {
  Rows rows;
  for (std::int32_t row = 0; row < result.GetCount(); ++row) {
    if (row > 0) result.MoveToNext();
    std::vector<std::string>& cells = rows.emplace_back();
    for (std::uint32_t column = 0; column < columns; ++column) {
      cells.push_back(result.GetString(column));
    }
  }
  return rows;
}

inline Rows Select(Velmora::Database& database, const Velmora::Query& query) {
  const auto result = database.RunQuery(std::make_shared<Velmora::Query>(query));
  return RowsOf(*result, static_cast<std::uint32_t>(query.GetColumns().size()));
}

inline sqlite3* ConnectionOf(Velmora::Database& database) {
  sqlite3* connection = nullptr;
  Velmora::QueryResult result;
  database.RunQuerySqlite("SELECT 1", &result, [&](sqlite3_stmt* statement) {
    connection = ::sqlite3_db_handle(statement);
    return true;
  });
  return connection;
}

// A database in a file of its own, which never waits for the disk. Trace lines are dropped; every
// other line must be expected.
class DatabaseFixture : public testing::Test {
 protected:
  DatabaseFixture() { Execute(database_, "PRAGMA synchronous = OFF"); }

  // Every test must leave no statement behind and a database that works.
  void TearDown() override {
    sqlite3* connection = ConnectionOf(database_);
    EXPECT_EQ(::sqlite3_next_stmt(connection, nullptr), nullptr);
    Velmora::QueryResult integrity;
    database_.RunQuerySqlite("PRAGMA integrity_check", &integrity, {});
    EXPECT_EQ(integrity.Get(0), "ok");
  }

  // The log line of a statement that cannot be prepared, or that fails while it runs.
  void ExpectPrepareError(const std::string& problem, TestSupport::CallPlace where = {}) {
    ExpectStatementError(problem + ". \n", where);
  }
  void ExpectStepError(const std::string& problem, const std::string& sql,
                       TestSupport::CallPlace where = {}) {
    ExpectStatementError(problem + ". Sql statement: " + sql + "\n", where);
  }

  const TestSupport::TemporaryDirectory folder_;
  TestSupport::LogCapture log_{Velmora::LoggingMode::Debug};
  Velmora::Database database_{"test.db", folder_.Path().string()};

 private:
  void ExpectStatementError(const std::string& text, TestSupport::CallPlace where) {
    log_.ExpectLine(TestSupport::LogLevel::Debug, "MockDatabaseService",
                    "ERROR inserting data: " + text, where);
  }
};

}  // namespace DatabaseTests
