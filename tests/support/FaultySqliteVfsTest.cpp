#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "support/FaultySqliteVfs.h"
#include "support/TemporaryDirectory.h"

namespace {

using Duration = TestSupport::FaultySqliteVfs::Duration;
using TestSupport::FaultySqliteVfs;
using TestSupport::SqliteFault;
using TestSupport::TemporaryDirectory;

constexpr const char* kWrite =
    "BEGIN; CREATE TABLE IF NOT EXISTS t (a); INSERT INTO t VALUES (zeroblob(9000)); COMMIT";

// One connection; Execute gives what SQLite does.
class Connection {
 public:
  explicit Connection(const std::string& path)
      : openCode_(::sqlite3_open(path.c_str(), &handle_)) {}
  ~Connection() { ::sqlite3_close(handle_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  int OpenCode() const { return openCode_; }
  int Execute(const char* sql) { return ::sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }
  int ExtendedCode() const { return ::sqlite3_extended_errcode(handle_); }

 private:
  sqlite3* handle_ = nullptr;
  int openCode_;
};

TEST(FaultySqliteVfs, IsTheDefaultAsLongAsItLives) {
  const std::string former = ::sqlite3_vfs_find(nullptr)->zName;
  {
    const FaultySqliteVfs vfs;
    EXPECT_NE(::sqlite3_vfs_find(nullptr)->zName, former);
  }
  EXPECT_EQ(::sqlite3_vfs_find(nullptr)->zName, former);
}

TEST(FaultySqliteVfs, PassesEverythingOnWhileNothingIsToFail) {
  const TemporaryDirectory folder;
  const std::string path = folder.PathOf("a.db");
  {
    const FaultySqliteVfs vfs;
    Connection connection(path);
    EXPECT_EQ(connection.OpenCode(), SQLITE_OK);
    EXPECT_EQ(connection.Execute(kWrite), SQLITE_OK);
    EXPECT_GT(vfs.Calls(), 10U);
    EXPECT_EQ(vfs.FailedCalls(), 0U);
  }
  Connection connection(path);
  EXPECT_EQ(connection.Execute("INSERT INTO t VALUES (1)"), SQLITE_OK);
}

TEST(FaultySqliteVfs, FailsOneCallWithTheErrorOfItsKind) {
  const TemporaryDirectory folder;
  FaultySqliteVfs vfs;
  vfs.FailCall(1, SqliteFault::Error, Duration::Once);
  EXPECT_EQ(Connection(folder.PathOf("a.db")).OpenCode(), SQLITE_CANTOPEN);
  EXPECT_EQ(vfs.FailedCalls(), 1U);
  EXPECT_EQ(Connection(folder.PathOf("a.db")).OpenCode(), SQLITE_OK);
  EXPECT_EQ(vfs.FailedCalls(), 1U);
}

TEST(FaultySqliteVfs, CountsOnlyCallsThatCanFailInTheWayAskedFor) {
  const TemporaryDirectory folder;
  FaultySqliteVfs vfs;
  Connection connection(folder.PathOf("a.db"));
  vfs.FailCall(3, SqliteFault::ShortWrite, Duration::Once);
  EXPECT_EQ(connection.Execute(kWrite), SQLITE_FULL);
  EXPECT_EQ(vfs.FailedCalls(), 1U);
  const std::size_t writes = vfs.Calls();
  EXPECT_GE(writes, 3U);
  EXPECT_EQ(connection.Execute("SELECT * FROM sqlite_schema"), SQLITE_OK);
  EXPECT_EQ(vfs.Calls(), writes);
}

TEST(FaultySqliteVfs, FailsEveryLaterCallUntilItIsHealed) {
  const TemporaryDirectory folder;
  FaultySqliteVfs vfs;
  Connection connection(folder.PathOf("a.db"));
  vfs.FailCall(1, SqliteFault::Error, Duration::FromThenOn);
  EXPECT_NE(connection.Execute(kWrite), SQLITE_OK);
  EXPECT_NE(connection.Execute(kWrite), SQLITE_OK);
  EXPECT_GE(vfs.FailedCalls(), 2U);
  vfs.Heal();
  connection.Execute("ROLLBACK");
  EXPECT_EQ(connection.Execute(kWrite), SQLITE_OK);
}

TEST(FaultySqliteVfs, CanSayThatSomebodyElseHasTheLock) {
  const TemporaryDirectory folder;
  FaultySqliteVfs vfs;
  Connection connection(folder.PathOf("a.db"));
  vfs.FailCall(1, SqliteFault::Busy, Duration::FromThenOn);
  EXPECT_EQ(connection.Execute(kWrite), SQLITE_BUSY);
}

TEST(FaultySqliteVfs, CanFillTheDiskBetweenTwoWritesAndWithinOne) {
  for (const SqliteFault fault : {SqliteFault::DiskFull, SqliteFault::ShortWrite}) {
    const TemporaryDirectory folder;
    FaultySqliteVfs vfs;
    Connection connection(folder.PathOf("a.db"));
    vfs.FailCall(1, fault, Duration::FromThenOn);
    EXPECT_EQ(connection.Execute(kWrite), SQLITE_FULL);
  }
}

}  // namespace
