#include <algorithm>
#include <atomic>
#include <thread>

#include "DatabaseFixture.h"
#include "support/WaitUntil.h"

namespace {

using namespace DatabaseTests;
using testing::StartsWith;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::Database;
using Velmora::Query;
using Velmora::Variant;

constexpr int kThreads = 16;
constexpr int kRounds = 20;

// Calls `work(0)` to `work(kThreads - 1)`, all at the same time, and waits for them.
void OnEveryThread(const std::function<void(int)>& work) {
  std::atomic<int> waiting{kThreads};
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      --waiting;
      EXPECT_TRUE(WaitUntil([&] { return waiting == 0; }));
      work(thread);
    });
  }
}

// Adds rows of its own and changes, reads and removes them.
void Work(Database& database, int thread) {
  const std::string mine = "thread=" + std::to_string(thread);
  for (int round = 0; round < kRounds; ++round) {
    EXPECT_TRUE(database.Insert(
        "t", {{"thread", Variant::FromInteger(thread)}, {"round", Variant::FromInteger(round)}}));
  }
  EXPECT_TRUE(database.Update("t", {{"done", Variant::FromBoolean(true)}}, mine, {}));
  EXPECT_TRUE(database.Delete("t", mine + " AND round>=?", {"10"}));
  const Rows rows = Select(database, Query("t", {"round", "done"}).SetSelection(mine));
  EXPECT_EQ(rows.size(), 10U);
  EXPECT_TRUE(std::all_of(rows.begin(), rows.end(), [](const auto& row) { return row[1] == "1"; }));
}

class DatabaseThreads : public DatabaseFixture {
 protected:
  DatabaseThreads() { Execute(database_, "CREATE TABLE t (thread, round, done)"); }
};

TEST_F(DatabaseThreads, SixteenShareOneDatabase) {
  OnEveryThread([&](int thread) { Work(database_, thread); });
  EXPECT_EQ(Select(database_, Query("t", {"count(*)"})), Rows({{"160"}}));
}

TEST_F(DatabaseThreads, SixteenUseSixteenDatabases) {
  std::vector<std::unique_ptr<Database>> databases;
  for (int index = 0; index < kThreads; ++index) {
    databases.push_back(std::make_unique<Database>(std::to_string(index), folder_.Path().string()));
    Execute(*databases.back(), "PRAGMA synchronous = OFF");
  }
  OnEveryThread([&](int thread) {
    Database& database = *databases[static_cast<std::size_t>(thread)];
    Execute(database, "CREATE TABLE t (thread, round, done)");
    Work(database, thread);
  });
  for (const auto& database : databases) {
    EXPECT_EQ(Select(*database, Query("t", {"count(*)"})), Rows({{"10"}}));
  }
}

TEST_F(DatabaseThreads, RunOneStatementAtATime) {
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  OnEveryThread([&](int) {
    for (int round = 0; round < kRounds; ++round) {
      database_.RunQuerySqlite("SELECT 1", nullptr, [&](sqlite3_stmt* statement) {
        if (++inside != 1) overlapped = true;
        sqlite3* connection = ::sqlite3_db_handle(statement);
        if (::sqlite3_next_stmt(connection, nullptr) != statement ||
            ::sqlite3_next_stmt(connection, statement) != nullptr) {
          overlapped = true;
        }
        std::this_thread::yield();
        --inside;
        return true;
      });
    }
  });
  EXPECT_FALSE(overlapped);
}

TEST_F(DatabaseThreads, RunStatementsOfTwoDatabasesSideBySide) {
  Database other("other.db", folder_.Path().string());
  std::atomic<int> inside{0};
  const auto waitForBoth = [&](sqlite3_stmt*) {
    ++inside;
    return WaitUntil([&] { return inside == 2; });
  };
  {
    const std::jthread thread(
        [&] { EXPECT_TRUE(other.RunQuerySqlite("SELECT 1", nullptr, waitForBoth)); });
    EXPECT_TRUE(database_.RunQuerySqlite("SELECT 1", nullptr, waitForBoth));
  }
}

TEST_F(DatabaseThreads, GetTheMessageOfTheirOwnError) {
  log_.AllowLines(LogLevel::Debug, "MockDatabaseService", StartsWith("ERROR inserting data: "));
  OnEveryThread([&](int thread) {
    const std::string table = "missing" + std::to_string(thread);
    for (int round = 0; round < kRounds; ++round) {
      EXPECT_THAT(ErrorOf([&] { Select(database_, Query(table)); }),
                  IsQueryError("no such table: " + table));
    }
  });
}

}  // namespace
