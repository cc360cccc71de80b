#include "VelmoraCore/Query.h"

#include <utility>

namespace Velmora {

Query::Query() = default;

Query::Query(std::string table, std::vector<std::string> columns)
    : table_(std::move(table)), columns_(std::move(columns)) {}

Query& Query::SetTable(std::string table) {
  table_ = std::move(table);
  return *this;
}

Query& Query::SetColumns(std::vector<std::string> columns) {
  columns_ = std::move(columns);
  return *this;
}

Query& Query::SetSelection(std::string selection, std::vector<std::string> selectionArgs) {
  selection_ = std::move(selection);
  selectionArgs_ = std::move(selectionArgs);
  return *this;
}

Query& Query::SetGroupBy(std::string groupBy) {
  groupBy_ = std::move(groupBy);
  return *this;
}

Query& Query::SetHaving(std::string having) {
  having_ = std::move(having);
  return *this;
}

Query& Query::SetOrderBy(std::string orderBy) {
  orderBy_ = std::move(orderBy);
  return *this;
}

Query& Query::SetLimit(std::string limit) {
  limit_ = std::move(limit);
  return *this;
}

const std::string& Query::GetTable() const { return table_; }

const std::vector<std::string>& Query::GetColumns() const { return columns_; }

const std::string& Query::GetSelection() const { return selection_; }

const std::vector<std::string>& Query::GetSelectionArgs() const { return selectionArgs_; }

const std::string& Query::GetGroupBy() const { return groupBy_; }

const std::string& Query::GetHaving() const { return having_; }

const std::string& Query::GetOrderBy() const { return orderBy_; }

const std::string& Query::GetLimit() const { return limit_; }

}  // namespace Velmora
