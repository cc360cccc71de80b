#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/Query.h"
#include "VelmoraCore/QueryResultInterface.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// One open database. May be used on any thread: statements run one at a time.
//
// Table and column names, and the arguments put into where clauses, become part of the statement
// as they stand; never build them from text that came from outside. A statement that fails throws
// an SdkError "database.query_exec_error" and leaves the database usable.
class VELMORA_CORE_API DatabaseInterface : public virtual ObjectInterface {
 public:
  enum class ColumnDataType : std::int32_t { Integer = 0, Real = 1, Text = 2 };
  enum class ColumnConstraint : std::int32_t {
    PrimaryKey = 0,
    AutoIncrement = 1,
    NotNull = 2,
    Unique = 3,
  };

  ~DatabaseInterface() override;

  // Makes the table unless there is one of that name. The three vectors hold one element per
  // column.
  virtual bool CreateTable(const std::string& table, const std::vector<std::string>& columnNames,
                           const std::vector<ColumnDataType>& columnDataTypes,
                           const std::vector<std::vector<ColumnConstraint>>& columnConstraints) = 0;

  // Adds one row. Only strings, numbers and booleans (kept as the texts "1" and "0") can be stored.
  virtual bool Insert(const std::string& table,
                      const std::map<std::string, std::shared_ptr<Variant>>& values) = 0;

  // The whole result, owned by the caller.
  virtual std::shared_ptr<QueryResultInterface> RunQuery(const std::shared_ptr<Query>& query) = 0;

  // Changes or deletes the rows for which `whereClause` holds, or every row when it is empty. Each
  // element of `whereArgs` takes the place of the first "?" left in the clause, unquoted.
  virtual bool Update(const std::string& table,
                      const std::map<std::string, std::shared_ptr<Variant>>& values,
                      const std::string& whereClause,
                      const std::vector<std::string>& whereArgs) = 0;
  virtual bool Delete(const std::string& table, const std::string& whereClause,
                      const std::vector<std::string>& whereArgs) = 0;

  // Drops the table; true as well when there is none.
  virtual bool DeleteTable(const std::string& table) = 0;

  // Does nothing: the connection lives as long as the object.
  virtual void Close() = 0;
};

}  // namespace Velmora
