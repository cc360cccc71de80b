#pragma once

#include <string>
#include <vector>

#include "VelmoraCore/DatabaseInterface.h"
#include "VelmoraCore/Export.h"

namespace Velmora {

// Builds SQL texts. May be used on any thread.
class VELMORA_CORE_API QueryStringBuilder {
 public:
  QueryStringBuilder() = delete;

  // "CREATE TABLE IF NOT EXISTS <table> (<name> <TYPE> <CONSTRAINTS>, ...)". Names go in as they
  // stand. The constraints of a column are written once each, in the order in which SQLite wants
  // them, whatever order they are given in.
  //
  // Empty when the three vectors differ in length, when they or the table's name are empty, and for
  // a type or a constraint that is none of the enumeration's.
  static std::string PrepareCreateTableQueryString(
      const std::string& table, const std::vector<std::string>& columnNames,
      const std::vector<DatabaseInterface::ColumnDataType>& columnDataTypes,
      const std::vector<std::vector<DatabaseInterface::ColumnConstraint>>& columnConstraints);
};

}  // namespace Velmora
