#include "services/database/SqlDb.h"

#include <sqlite3.h>

namespace Velmora {
namespace {

// SQLite may have been built to take this for the start of a URI, whose parameters decide how the
// file is opened.
constexpr const char* kUriScheme = "file:";

}  // namespace

SqlDb::~SqlDb() {
  if (connection_ != nullptr) ::sqlite3_close(connection_);
}

bool SqlDb::Open(const std::string& path) {
  // SQLite would open what the bytes before the zero name: another file, or a directory's parent.
  if (path.find('\0') != std::string::npos) {
    openResult_ = SQLITE_CANTOPEN;
    return false;
  }
  const std::string plainPath = path.starts_with(kUriScheme) ? "./" + path : path;
  openResult_ = ::sqlite3_open(plainPath.empty() ? nullptr : plainPath.c_str(), &connection_);
  if (openResult_ != SQLITE_OK) return false;
  MistrustFile();
  return true;
}

// Statements of ours need no schema that changes the file's inner workings, and a file that
// somebody else has written must not call functions by its views and triggers. Whether SQLite
// knows the two settings or not, the database works.
void SqlDb::MistrustFile() {
  ::sqlite3_db_config(connection_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  ::sqlite3_db_config(connection_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

void SqlDb::KeepJournalInMemory() {
  ::sqlite3_exec(connection_, "PRAGMA journal_mode=MEMORY", nullptr, nullptr, nullptr);
}

void SqlDb::KeepJournalBesideFile() {
  ::sqlite3_exec(connection_, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
}

std::string SqlDb::ErrorMessage() const {
  return connection_ != nullptr ? ::sqlite3_errmsg(connection_) : ::sqlite3_errstr(openResult_);
}

}  // namespace Velmora
