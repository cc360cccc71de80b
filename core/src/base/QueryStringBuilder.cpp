#include "VelmoraCore/QueryStringBuilder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace Velmora {
namespace {

using DataType = DatabaseInterface::ColumnDataType;
using Constraint = DatabaseInterface::ColumnConstraint;

// AUTOINCREMENT belongs to the primary key and must follow it at once.
constexpr std::array<std::pair<Constraint, const char*>, 4> kConstraintsInOrder = {{
    {Constraint::PrimaryKey, " PRIMARY KEY"},
    {Constraint::AutoIncrement, " AUTOINCREMENT"},
    {Constraint::NotNull, " NOT NULL"},
    {Constraint::Unique, " UNIQUE"},
}};

std::optional<std::string> TypeText(DataType type) {
  switch (type) {
    case DataType::Integer:
      return " INTEGER";
    case DataType::Real:
      return " REAL";
    case DataType::Text:
      return " TEXT";
  }
  return std::nullopt;
}

bool IsKnown(Constraint constraint) {
  return std::any_of(kConstraintsInOrder.begin(), kConstraintsInOrder.end(),
                     [constraint](const auto& known) { return known.first == constraint; });
}

std::optional<std::string> ConstraintsText(const std::vector<Constraint>& constraints) {
  if (!std::all_of(constraints.begin(), constraints.end(), IsKnown)) {
    return std::nullopt;
  }
  std::string text;
  for (const auto& [constraint, words] : kConstraintsInOrder) {
    if (std::find(constraints.begin(), constraints.end(), constraint) != constraints.end()) {
      text += words;
    }
  }
  return text;
}

}  // namespace

std::string QueryStringBuilder::PrepareCreateTableQueryString(
    const std::string& table, const std::vector<std::string>& columnNames,
    const std::vector<DataType>& columnDataTypes,
    const std::vector<std::vector<Constraint>>& columnConstraints) {
  if (table.empty() || columnNames.empty() || columnNames.size() != columnDataTypes.size() ||
      columnNames.size() != columnConstraints.size()) {
    return {};
  }
  std::string columns;
  for (std::size_t index = 0; index < columnNames.size(); ++index) {
    const std::optional<std::string> type = TypeText(columnDataTypes[index]);
    const std::optional<std::string> constraints = ConstraintsText(columnConstraints[index]);
    if (!type.has_value() || !constraints.has_value()) {
      return {};
    }
    columns += (index == 0 ? "" : ", ") + columnNames[index] + *type + *constraints;
  }
  return "CREATE TABLE IF NOT EXISTS " + table + " (" + columns + ")";
}

}  // namespace Velmora
