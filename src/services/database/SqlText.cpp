#include "services/database/SqlText.h"

#include <functional>
#include <string_view>

namespace Velmora::SqlText {
namespace {

constexpr std::string_view kSeparator = ", ";

// Appends what `textOf` gives for each element, with separators between them.
template <class Elements, class TextOf>
void AppendList(const Elements& elements, std::string& sql, TextOf textOf) {
  std::string_view separator;
  for (const auto& element : elements) {
    sql.append(separator).append(textOf(element));
    separator = kSeparator;
  }
}

std::string ColumnsOf(const Query& query) {
  if (query.GetColumns().empty()) return "*";
  std::string columns;
  AppendList(query.GetColumns(), columns, std::identity());
  return columns;
}

void AppendClause(std::string_view keyword, const std::string& clause, std::string& sql) {
  if (!clause.empty()) sql.append(keyword).append(clause).append(" ");
}

}  // namespace

std::string SubstituteArguments(const std::string& clause,
                                const std::vector<std::string>& arguments) {
  std::string text;
  // What is still to be searched, the foremost piece last.
  std::vector<std::string_view> pieces = {clause};
  auto argument = arguments.begin();
  while (!pieces.empty()) {
    std::string_view& piece = pieces.back();
    const std::size_t mark = argument == arguments.end() ? std::string_view::npos : piece.find('?');
    text += piece.substr(0, mark);
    if (mark == std::string_view::npos) {
      pieces.pop_back();
    } else {
      piece.remove_prefix(mark + 1);
      pieces.emplace_back(*argument++);
    }
  }
  return text;
}

std::string TableExists(const std::string& table) {
  return "SELECT name FROM sqlite_master WHERE type='table' AND name='" + table + "'";
}

std::string Insert(const std::string& table,
                   const std::map<std::string, std::shared_ptr<Variant>>& values) {
  std::string sql = "INSERT INTO " + table + " (";
  AppendList(values, sql, [](const auto& entry) { return std::string_view(entry.first); });
  sql += ") VALUES (";
  AppendList(values, sql, [](const auto&) { return "?"; });
  sql += ");";
  return sql;
}

std::string Update(const std::string& table,
                   const std::map<std::string, std::shared_ptr<Variant>>& values,
                   const std::string& whereClause, const std::vector<std::string>& whereArgs) {
  std::string sql = "Update " + table + " SET ";
  AppendList(values, sql, [](const auto& entry) { return entry.first + "=?"; });
  const std::string where = SubstituteArguments(whereClause, whereArgs);
  if (!where.empty()) sql.append(" WHERE ").append(where);
  return sql;
}

std::string Select(const Query& query) {
  std::string sql = "SELECT " + ColumnsOf(query) + " FROM " + query.GetTable() + " ";
  if (!query.GetSelection().empty()) {
    sql += " WHERE " + SubstituteArguments(query.GetSelection(), query.GetSelectionArgs());
  }
  AppendClause(" GROUP BY ", query.GetGroupBy(), sql);
  AppendClause(" HAVING ", query.GetHaving(), sql);
  AppendClause(" ORDER BY ", query.GetOrderBy(), sql);
  AppendClause(" LIMIT ", query.GetLimit(), sql);
  return sql;
}

std::string Delete(const std::string& table, const std::string& whereClause,
                   const std::vector<std::string>& whereArgs) {
  std::string sql = "DELETE FROM " + table;
  // Unlike in an update the clause decides as it was given, so one that its arguments make empty is
  // a mistake instead of a deletion of every row.
  if (!whereClause.empty()) sql += " WHERE " + SubstituteArguments(whereClause, whereArgs);
  return sql;
}

std::string DropTable(const std::string& table) { return "DROP TABLE IF EXISTS " + table; }

}  // namespace Velmora::SqlText
