#pragma once

#include <string>
#include <vector>

struct sqlite3_stmt;

namespace Velmora {

class SqlDb;

// Owns one prepared statement, which is finalised with the object. Belongs to one thread at a time
// and must not outlive its connection.
class SqlStatement {
 public:
  enum class StepResult { Row, Done, Failed };

  // Prepares the first statement of `sql`, of which no more than 1500 bytes count. What SQLite says
  // about a failure is asked of the connection.
  SqlStatement(const SqlDb& connection, const char* sql);
  ~SqlStatement();
  SqlStatement(const SqlStatement&) = delete;
  SqlStatement& operator=(const SqlStatement&) = delete;

  bool IsPrepared() const { return isPrepared_; }

  // Null when preparing failed, and for a text that holds no statement.
  sqlite3_stmt* Get() const { return statement_; }

  // The text that was prepared; empty without a statement.
  std::string Sql() const;

  StepResult Step();

  // Of the row that Step() has come to. Cells are texts: integers are cut to 32 bits, floating
  // numbers have six decimals, a text ends at its first zero byte; blobs and nulls are empty.
  std::vector<std::string> ColumnNames() const;
  std::vector<std::string> Row() const;

 private:
  sqlite3_stmt* statement_ = nullptr;
  bool isPrepared_ = false;
};

}  // namespace Velmora
