#include "platform/linux/SqliteUserDefaultsError.h"

#include <sqlite3.h>

#include "platform/linux/FileErrors.h"

namespace Platform {
namespace {

SqliteUserDefaultsError::Kind KindOf(int code) {
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return SqliteUserDefaultsError::Kind::Locked;
    case SQLITE_CORRUPT:
      return SqliteUserDefaultsError::Kind::Damaged;
    case SQLITE_NOTADB:
      return SqliteUserDefaultsError::Kind::Foreign;
    default:
      return SqliteUserDefaultsError::Kind::Failed;
  }
}

}  // namespace

SqliteUserDefaultsError SqliteUserDefaultsError::Of(sqlite3* connection, int code) {
  std::string reason = ::sqlite3_errstr(code);
  const int errorNumber = connection != nullptr ? ::sqlite3_system_errno(connection) : 0;
  const bool isOfSystem = (code & 0xff) == SQLITE_CANTOPEN || (code & 0xff) == SQLITE_IOERR;
  if (isOfSystem && errorNumber != 0) reason += ": " + std::string(ReasonOf(errorNumber));
  return {KindOf(code), reason};
}

SqliteUserDefaultsError SqliteUserDefaultsError::OfSystem(int errorNumber) {
  return {Kind::Failed, std::string(ReasonOf(errorNumber))};
}

}  // namespace Platform
