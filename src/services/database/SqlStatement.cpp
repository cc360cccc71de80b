#include "services/database/SqlStatement.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>

#include <sqlite3.h>

#include "services/database/SqlDb.h"

namespace Velmora {
namespace {

constexpr std::size_t kMaximumSql = 1500;

// What SQLite is told to read: with the zero byte where that comes in time, because SQLite takes
// the length at its word.
int BytesToRead(const char* sql) {
  const std::size_t length = ::strnlen(sql, kMaximumSql);
  return static_cast<int>(length < kMaximumSql ? length + 1 : kMaximumSql);
}

// With six decimals and a point, whatever the locale of the process.
std::string FloatText(double number) {
  constexpr int kDecimals = 6;
  // The largest double has 309 digits before the point.
  std::array<char, 400> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number,
                                 std::chars_format::fixed, kDecimals);
  return {text.data(), end.ptr};
}

std::string CellText(sqlite3_stmt* statement, int column) {
  switch (::sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      return std::to_string(::sqlite3_column_int(statement, column));
    case SQLITE_FLOAT:
      return FloatText(::sqlite3_column_double(statement, column));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(::sqlite3_column_text(statement, column));
      return text != nullptr ? text : "";
    }
    default:
      return {};
  }
}

}  // namespace

SqlStatement::SqlStatement(const SqlDb& connection, const char* sql)
    : isPrepared_(::sqlite3_prepare_v2(connection.Get(), sql, BytesToRead(sql), &statement_,
                                       nullptr) == SQLITE_OK) {}

SqlStatement::~SqlStatement() { ::sqlite3_finalize(statement_); }

std::string SqlStatement::Sql() const {
  const char* sql = ::sqlite3_sql(statement_);
  return sql != nullptr ? sql : "";
}

SqlStatement::StepResult SqlStatement::Step() {
  switch (::sqlite3_step(statement_)) {
    case SQLITE_ROW:
      return StepResult::Row;
    case SQLITE_DONE:
      return StepResult::Done;
    default:
      return StepResult::Failed;
  }
}

std::vector<std::string> SqlStatement::ColumnNames() const {
  std::vector<std::string> names;
  const int count = ::sqlite3_column_count(statement_);
  names.reserve(static_cast<std::size_t>(count));
  for (int column = 0; column < count; ++column) {
    const char* name = ::sqlite3_column_name(statement_, column);
    names.emplace_back(name != nullptr ? name : "");
  }
  return names;
}

std::vector<std::string> SqlStatement::Row() const {
  std::vector<std::string> cells;
  const int count = ::sqlite3_column_count(statement_);
  cells.reserve(static_cast<std::size_t>(count));
  for (int column = 0; column < count; ++column) cells.push_back(CellText(statement_, column));
  return cells;
}

}  // namespace Velmora
