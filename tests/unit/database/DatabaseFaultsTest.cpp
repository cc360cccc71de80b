#include <limits>
#include <set>
#include <tuple>

#include "DatabaseFixture.h"
#include "support/FaultySqliteVfs.h"

namespace {

using namespace DatabaseTests;
using Duration = TestSupport::FaultySqliteVfs::Duration;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using TestSupport::FaultySqliteVfs;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using TestSupport::SqliteFault;
using TestSupport::TemporaryDirectory;
using Type = Velmora::DatabaseInterface::ColumnDataType;
using Constraint = Velmora::DatabaseInterface::ColumnConstraint;
using Velmora::Database;
using Velmora::Query;
using Velmora::QueryResult;
using Velmora::Variant;
namespace ErrorCodes = Velmora::ErrorCodes;

// Longer than a page, so that it takes several writes.
const std::string kLong(20'000, 'x');

// The texts that a note may hold now; an empty one stands for a note that is not there. A change
// that failed may still have been made, or may not.
class Note {
 public:
  void Insert(const std::string& text, bool succeeded) { Become({text}, succeeded); }
  void Delete(bool succeeded) { Become({""}, succeeded); }
  // Changes nothing where there is no note.
  void Update(const std::string& text, bool succeeded) {
    std::set<std::string> changed;
    for (const std::string& former : possible_) changed.insert(former.empty() ? "" : text);
    Become(changed, succeeded);
  }
  bool MayHold(const std::string& text) const { return possible_.contains(text); }

 private:
  void Become(const std::set<std::string>& texts, bool succeeded) {
    if (succeeded) possible_.clear();
    possible_.insert(texts.begin(), texts.end());
  }

  std::set<std::string> possible_ = {""};
};

// A database's life, from its opening on, in which calls into the file system may fail.
class Life {
 public:
  Life(std::string name, const TemporaryDirectory& folder)
      : name_(std::move(name)), directory_(folder.Path().string()) {}

  void Live() {
    if (!Try([&] { database_ = std::make_unique<Database>(name_, directory_); })) return;
    Try([&] { CreateTable(); });
    Insert(1, "one");
    Insert(2, kLong);
    Try([&] { Read(); });
    first_.Update("uno", Try([&] {
                    database_->Update("notes", {{"text", Variant::FromString("uno")}}, "id=1", {});
                  }));
    second_.Delete(Try([&] { database_->Delete("notes", "id=?", {"2"}); }));
    Try([&] { database_->DeleteTable("missing"); });
  }

  void Close() { database_.reset(); }

  // To be called when nothing fails any more.
  void CheckThatAllIsWell() {
    if (!database_) database_ = std::make_unique<Database>(name_, directory_);
    CheckContents();
    database_->Insert("notes",
                      {{"id", Variant::FromInteger(3)}, {"text", Variant::FromString("x")}});
    EXPECT_EQ(TextOf(3), "x");
    Close();
    database_ = std::make_unique<Database>(name_, directory_);
    CheckContents();
    EXPECT_EQ(TextOf(3), "x");
  }

 private:
  // True when nothing was thrown. Only documented errors may be.
  bool Try(const std::function<void()>& step) {
    const auto error = ErrorOf(step);
    if (error) {
      EXPECT_THAT(error->GetCode(),
                  database_ ? ErrorCodes::kDatabaseQueryExecError : ErrorCodes::kDatabaseOpenError);
      EXPECT_THAT(error->GetMessage(), Not(IsEmpty()));
    }
    // To ask for the connection takes no call into the file system.
    if (database_) {
      EXPECT_EQ(::sqlite3_next_stmt(ConnectionOf(*database_), nullptr), nullptr);
    }
    return !error;
  }

  void CreateTable() {
    EXPECT_TRUE(database_->CreateTable("notes", {"id", "text"}, {Type::Integer, Type::Text},
                                       {{Constraint::PrimaryKey}, {}}));
  }

  void Insert(int id, const std::string& text) {
    const bool inserted = Try([&] {
      database_->Insert("notes",
                        {{"id", Variant::FromInteger(id)}, {"text", Variant::FromString(text)}});
    });
    (id == 1 ? first_ : second_).Insert(text, inserted);
  }

  void Read() {
    const Rows rows = Select(*database_, Query("notes", {"id", "text"}));
    EXPECT_LE(rows.size(), 2U);
  }

  std::string TextOf(int id) {
    const Rows rows =
        Select(*database_, Query("notes", {"text"}).SetSelection("id=?", {std::to_string(id)}));
    EXPECT_LE(rows.size(), 1U);
    return rows.empty() ? "" : rows.front().front();
  }

  void CheckContents() {
    QueryResult integrity;
    database_->RunQuerySqlite("PRAGMA integrity_check", &integrity, {});
    EXPECT_EQ(integrity.Get(0), "ok");
    CreateTable();
    EXPECT_TRUE(first_.MayHold(TextOf(1))) << TextOf(1);
    EXPECT_TRUE(second_.MayHold(TextOf(2))) << TextOf(2).size() << " bytes";
  }

  const std::string name_;
  const std::string directory_;
  std::unique_ptr<Database> database_;
  Note first_;
  Note second_;
};

class DatabaseFaults : public testing::TestWithParam<std::tuple<SqliteFault, Duration>> {};

TEST_P(DatabaseFaults, OfEverySingleCallLeaveASoundAndUsableDatabase) {
  const auto [fault, duration] = GetParam();
  const TemporaryDirectory folder;
  FaultySqliteVfs vfs;
  LogCapture log(Velmora::LoggingMode::Debug);
  constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
  vfs.FailCall(kNever, fault, duration);
  Life undisturbed("undisturbed.db", folder);
  undisturbed.Live();
  const std::size_t callsOfALife = vfs.Calls();
  ASSERT_GT(callsOfALife, 10U);
  EXPECT_THAT(log.TakeLines(), IsEmpty());

  log.AllowLines(LogLevel::Debug, "MockDatabaseService", StartsWith("ERROR inserting data: "));
  log.AllowLines(LogLevel::Error, "DatabaseService", HasSubstr("> failed to open: "));

  for (std::size_t number = 1; number <= callsOfALife && !HasFailure(); ++number) {
    SCOPED_TRACE("call " + std::to_string(number));
    Life life(std::to_string(number) + ".db", folder);
    vfs.FailCall(number, fault, duration);
    life.Live();
    EXPECT_GE(vfs.FailedCalls(), 1U);
    vfs.Heal();
    const auto error = ErrorOf([&] { life.CheckThatAllIsWell(); });
    EXPECT_FALSE(error) << error->what();
  }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, DatabaseFaults,
                         testing::Values(std::tuple(SqliteFault::Error, Duration::Once),
                                         std::tuple(SqliteFault::Error, Duration::FromThenOn),
                                         std::tuple(SqliteFault::Busy, Duration::Once),
                                         std::tuple(SqliteFault::Busy, Duration::FromThenOn),
                                         std::tuple(SqliteFault::DiskFull, Duration::Once),
                                         std::tuple(SqliteFault::DiskFull, Duration::FromThenOn),
                                         std::tuple(SqliteFault::ShortWrite, Duration::Once),
                                         std::tuple(SqliteFault::ShortWrite,
                                                    Duration::FromThenOn)));

TEST(DatabaseFaultsWhileItCloses, LoseNothing) {
  const TemporaryDirectory folder;
  FaultySqliteVfs vfs;
  const LogCapture log(Velmora::LoggingMode::Debug);
  Life life("a.db", folder);
  life.Live();
  vfs.FailCall(1, SqliteFault::Error, Duration::FromThenOn);
  life.Close();
  EXPECT_GE(vfs.FailedCalls(), 1U);
  vfs.Heal();
  life.CheckThatAllIsWell();
}

}  // namespace
