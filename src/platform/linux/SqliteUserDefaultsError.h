#pragma once

#include <stdexcept>
#include <string>

struct sqlite3;

namespace Platform {

// Why an operation on a file of user defaults failed; does not leave the classes of that name. The
// text is a reason for people, without the path.
class SqliteUserDefaultsError : public std::runtime_error {
 public:
  enum class Kind {
    Failed,   // nothing can be done about it here: a full disk, a missing permission
    Locked,   // another process kept the lock for too long
    Damaged,  // what is in the file cannot be used
    Foreign,  // the file holds something else
  };

  SqliteUserDefaultsError(Kind kind, const std::string& reason)
      : std::runtime_error(reason), kind_(kind) {}

  // What SQLite says about the last call on `connection`, which gave `code`. The connection may be
  // null where there was no memory for one.
  static SqliteUserDefaultsError Of(sqlite3* connection, int code);

  // What the system says about `errorNumber`.
  static SqliteUserDefaultsError OfSystem(int errorNumber);

  Kind GetKind() const { return kind_; }

 private:
  Kind kind_;
};

}  // namespace Platform
