#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "VelmoraCore/DatabaseInterface.h"
#include "VelmoraCore/Object.h"
#include "services/database/QueryResult.h"
#include "services/database/SqlDb.h"

struct sqlite3_stmt;

namespace Velmora {

// One SQLite file, open for the life of the object.
//
// Safe from any thread. Statements run one at a time under a lock, which is also held while their
// lines are logged and their binders are called: neither may run a statement on the same database.
// A statement that fails throws SdkError "database.query_exec_error" with what SQLite says; it is
// finalised then, the lock is free and the database usable.
//
// Of a statement's text only the first 1500 bytes count, up to the first zero byte.
class Database final : public Object, public virtual DatabaseInterface {
 public:
  // Opens directory + "/" + name; without a directory, a private temporary database. Throws
  // SdkError "database.open_error" when SQLite cannot open it, and for a path with a zero byte in
  // it. A file that is no database is found out by the first statement.
  Database(const std::string& name, const std::string& directory);

  bool CreateTable(const std::string& table, const std::vector<std::string>& columnNames,
                   const std::vector<ColumnDataType>& columnDataTypes,
                   const std::vector<std::vector<ColumnConstraint>>& columnConstraints) override;

  // Throws "database.query_exec_error" with "Table does not exist\n" when there is no table of
  // exactly this name, and, like Update, for a value that is none of those which can be stored.
  bool Insert(const std::string& table,
              const std::map<std::string, std::shared_ptr<Variant>>& values) override;

  std::shared_ptr<QueryResultInterface> RunQuery(const std::shared_ptr<Query>& query) override;
  bool Update(const std::string& table,
              const std::map<std::string, std::shared_ptr<Variant>>& values,
              const std::string& whereClause, const std::vector<std::string>& whereArgs) override;
  bool Delete(const std::string& table, const std::string& whereClause,
              const std::vector<std::string>& whereArgs) override;
  bool DeleteTable(const std::string& table) override;
  void Close() override;

  // To be called before the file is removed: holders go on with the file that has no name then.
  void OutliveFile();

  // To be called when the file could not be removed.
  void KeepFile();

  // Names are compared byte by byte.
  bool TableExistQuery(const std::string& table);

  // Runs the first statement of `sql` to its end and returns true. Its rows are appended to
  // `result`; without one they are dropped. `binder` may be empty; it binds the parameters and must
  // not keep the statement; false from it, or what it throws, ends the run.
  bool RunQuerySqlite(const char* sql, QueryResult* result,
                      const std::function<bool(sqlite3_stmt*)>& binder);

  // Binds the values to the parameters from 1 on, in the order of the map; false when one cannot be
  // bound. Booleans are bound as the texts "1" and "0". For nulls, vectors, maps and empty pointers
  // it throws, and the run that called it finalises the statement.
  bool SqlBindStatement(sqlite3_stmt* statement,
                        const std::map<std::string, std::shared_ptr<Variant>>& values);

 private:
  const std::string name_;
  SqlDb connection_;
  std::mutex mutex_;  // held for the whole of a statement
};

}  // namespace Velmora
