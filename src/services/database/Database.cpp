#include "services/database/Database.h"

#include <sqlite3.h>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/QueryStringBuilder.h"
#include "VelmoraCore/SdkError.h"
#include "services/database/SqlStatement.h"
#include "services/database/SqlText.h"

namespace Velmora {
namespace {

using StepResult = SqlStatement::StepResult;

constexpr const char* kLogTag = "DatabaseService";
// Log readers know the errors of statements by this tag.
constexpr const char* kStatementErrorTag = "MockDatabaseService";
constexpr const char* kSourceLocation = "src/services/database/Database";
constexpr const char* kTableDoesNotExist = "Table does not exist\n";

SdkError QueryError(const std::string& message, int line) {
  return {ErrorCodes::kDatabaseQueryExecError, message, DebugInfo(kSourceLocation, line)};
}

bool CanBeStored(const std::shared_ptr<Variant>& value) {
  if (!value) return false;
  switch (value->GetKind()) {
    case VariantKind::String:
    case VariantKind::Integer:
    case VariantKind::Long:
    case VariantKind::Double:
    case VariantKind::Boolean:
      return true;
    case VariantKind::Null:
    case VariantKind::VariantVector:
    case VariantKind::VariantMap:
      break;
  }
  return false;
}

int BindText(sqlite3_stmt* statement, int parameter, const std::string& text) {
  return ::sqlite3_bind_text64(statement, parameter, text.data(), text.size(), SQLITE_TRANSIENT,
                               SQLITE_UTF8);
}

bool Bind(sqlite3_stmt* statement, int parameter, const Variant& value) {
  try {
    switch (value.GetKind()) {
      case VariantKind::String:
        return BindText(statement, parameter, value.GetString()) == SQLITE_OK;
      case VariantKind::Integer:
        return ::sqlite3_bind_int(statement, parameter, value.GetInteger()) == SQLITE_OK;
      case VariantKind::Long:
        return ::sqlite3_bind_int64(statement, parameter, value.GetLong()) == SQLITE_OK;
      case VariantKind::Double:
        return ::sqlite3_bind_double(statement, parameter, value.GetDouble()) == SQLITE_OK;
      case VariantKind::Boolean:
        return BindText(statement, parameter, value.GetBoolean() ? "1" : "0") == SQLITE_OK;
      default:
        return false;
    }
  } catch (const SdkError&) {
    return false;
  }
}

// The result of the last step: Done or Failed.
StepResult RunToEnd(SqlStatement& statement, QueryResult* result) {
  StepResult step = statement.Step();
  // Only the log tells them.
  const bool needsNames =
      result != nullptr && step == StepResult::Row && Log::Precheck(LoggingMode::Trace);
  const auto columnNames = needsNames ? statement.ColumnNames() : std::vector<std::string>();
  for (; step == StepResult::Row; step = statement.Step()) {
    if (result != nullptr) result->SetArgs(statement.Row(), columnNames);
  }
  return step;
}

bool BindNothing(sqlite3_stmt* /*statement*/) { return true; }

}  // namespace

Database::Database(const std::string& name, const std::string& directory)
    : Object(kLogTag), name_(name) {
  const std::string path = directory.empty() ? "" : directory + "/" + name_;
  if (!connection_.Open(path)) {
    const std::string problem = connection_.ErrorMessage();
    Log::Error(kLogTag, "<%s> failed to open: %s", name_.c_str(), problem.c_str());
    throw SdkError(ErrorCodes::kDatabaseOpenError, problem, DebugInfo(kSourceLocation, __LINE__));
  }
  Log::Trace(kLogTag, "<%s> opened successfully", name_.c_str());
}

bool Database::CreateTable(const std::string& table, const std::vector<std::string>& columnNames,
                           const std::vector<ColumnDataType>& columnDataTypes,
                           const std::vector<std::vector<ColumnConstraint>>& columnConstraints) {
  const std::string sql = QueryStringBuilder::PrepareCreateTableQueryString(
      table, columnNames, columnDataTypes, columnConstraints);
  return RunQuerySqlite(sql.c_str(), nullptr, {});
}

bool Database::Insert(const std::string& table,
                      const std::map<std::string, std::shared_ptr<Variant>>& values) {
  if (!TableExistQuery(table)) throw QueryError(kTableDoesNotExist, __LINE__);
  return RunQuerySqlite(
      SqlText::Insert(table, values).c_str(), nullptr,
      [&](sqlite3_stmt* statement) { return SqlBindStatement(statement, values); });
}

std::shared_ptr<QueryResultInterface> Database::RunQuery(const std::shared_ptr<Query>& query) {
  if (!query) throw QueryError("No query was given", __LINE__);
  auto result = std::make_shared<QueryResult>();
  RunQuerySqlite(SqlText::Select(*query).c_str(), result.get(), BindNothing);
  return result;
}

bool Database::Update(const std::string& table,
                      const std::map<std::string, std::shared_ptr<Variant>>& values,
                      const std::string& whereClause, const std::vector<std::string>& whereArgs) {
  return RunQuerySqlite(
      SqlText::Update(table, values, whereClause, whereArgs).c_str(), nullptr,
      [&](sqlite3_stmt* statement) { return SqlBindStatement(statement, values); });
}

bool Database::Delete(const std::string& table, const std::string& whereClause,
                      const std::vector<std::string>& whereArgs) {
  return RunQuerySqlite(
      SqlText::Delete(table, whereClause, whereArgs).c_str(), nullptr, [](sqlite3_stmt* statement) {
        Log::Trace(kLogTag, "sql delete statement %s.\n", ::sqlite3_sql(statement));
        return true;
      });
}

bool Database::DeleteTable(const std::string& table) {
  return RunQuerySqlite(SqlText::DropTable(table).c_str(), nullptr, {});
}

void Database::Close() {}

void Database::OutliveFile() {
  const std::lock_guard lock(mutex_);
  connection_.KeepJournalInMemory();
}

void Database::KeepFile() {
  const std::lock_guard lock(mutex_);
  connection_.KeepJournalBesideFile();
}

bool Database::TableExistQuery(const std::string& table) {
  QueryResult result;
  RunQuerySqlite(SqlText::TableExists(table).c_str(), &result, {});
  return result.GetCount() == 1;
}

bool Database::RunQuerySqlite(const char* sql, QueryResult* result,
                              const std::function<bool(sqlite3_stmt*)>& binder) {
  if (sql == nullptr) throw QueryError("No statement was given", __LINE__);
  const std::lock_guard lock(mutex_);
  SqlStatement statement(connection_, sql);
  if (!statement.IsPrepared()) {
    const std::string problem = connection_.ErrorMessage();
    Log::Debug(kStatementErrorTag, "ERROR inserting data: %s. \n", problem.c_str());
    throw QueryError(problem, __LINE__);
  }
  if (binder && !binder(statement.Get())) throw QueryError(connection_.ErrorMessage(), __LINE__);

  if (RunToEnd(statement, result) == StepResult::Failed) {
    const std::string problem = connection_.ErrorMessage();
    Log::Debug(kStatementErrorTag, "ERROR inserting data: %s. Sql statement: %s\n", problem.c_str(),
               statement.Sql().c_str());
    throw QueryError(problem, __LINE__);
  }
  return true;
}

bool Database::SqlBindStatement(sqlite3_stmt* statement,
                                const std::map<std::string, std::shared_ptr<Variant>>& values) {
  int parameter = 0;
  for (const auto& [column, value] : values) {
    if (!CanBeStored(value)) throw QueryError(kTableDoesNotExist, __LINE__);
    if (!Bind(statement, ++parameter, *value)) return false;
  }
  return true;
}

}  // namespace Velmora
