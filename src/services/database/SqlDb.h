#pragma once

#include <string>

struct sqlite3;

namespace Velmora {

// Owns one SQLite connection, which closes with the object, also where opening it failed. Belongs
// to one thread at a time.
class SqlDb {
 public:
  SqlDb() = default;
  ~SqlDb();
  SqlDb(const SqlDb&) = delete;
  SqlDb& operator=(const SqlDb&) = delete;

  // Opens the file, and makes it when it is missing; an empty path gives a private temporary
  // database. False when that fails, and at once for a path that holds a zero byte. To be called
  // once.
  bool Open(const std::string& path);

  // From now on changes can be made even when the file has lost its name: SQLite would not make a
  // journal beside it. A process that ends in the middle of a change may spoil the file then.
  // Does nothing when SQLite will not have it.
  void KeepJournalInMemory();

  // As it is at first: the file survives a process that ends in the middle of a change.
  void KeepJournalBesideFile();

  // What SQLite says about the last call on the connection.
  std::string ErrorMessage() const;

  // Null unless opened.
  sqlite3* Get() const { return connection_; }

 private:
  void MistrustFile();

  sqlite3* connection_ = nullptr;
  int openResult_ = 0;
};

}  // namespace Velmora
