#include "platform/linux/SqliteUserDefaultsDatabase.h"

#include <optional>
#include <span>

#include <sqlite3.h>

#include "platform/linux/SqliteUserDefaultsError.h"

namespace Platform {
namespace {

using Kind = SqliteUserDefaultsError::Kind;

// Tells our files from other databases; "QEXU".
constexpr std::uint32_t kApplicationId = 0x51455855;
constexpr std::int64_t kVersion = 1;
constexpr std::string_view kSchema =
    "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, type INTEGER NOT NULL, "
    "value BLOB NOT NULL) WITHOUT ROWID";
// A row takes no more than its key and its value.
constexpr int kMaximumRow = static_cast<int>(kMaximumUserDefaultsBlob) * 2;

// The least text behind all that begin with `prefix`; nothing when there is none.
std::optional<std::string> EndOfPrefix(std::string prefix) {
  while (!prefix.empty() && prefix.back() == '\xff') prefix.pop_back();
  if (prefix.empty()) return std::nullopt;
  prefix.back() = static_cast<char>(static_cast<unsigned char>(prefix.back()) + 1);
  return prefix;
}

}  // namespace

void SqliteUserDefaultsDatabase::Closer::operator()(sqlite3* connection) const {
  ::sqlite3_close(connection);
}

void SqliteUserDefaultsDatabase::Finalizer::operator()(sqlite3_stmt* statement) const {
  ::sqlite3_finalize(statement);
}

// One run of a prepared statement, which is ready for the next when this goes.
class SqliteUserDefaultsDatabase::Execution {
 public:
  explicit Execution(const Statement& statement) : statement_(statement.get()) {}
  ~Execution() {
    ::sqlite3_reset(statement_);
    ::sqlite3_clear_bindings(statement_);
  }
  Execution(const Execution&) = delete;
  Execution& operator=(const Execution&) = delete;

  void BindText(int index, std::string_view text) {
    // An empty view may have no address, which would bind a null.
    Check(::sqlite3_bind_text64(statement_, index, text.empty() ? "" : text.data(), text.size(),
                                SQLITE_STATIC, SQLITE_UTF8));
  }
  void BindBlob(int index, std::span<const std::uint8_t> bytes) {
    Check(::sqlite3_bind_blob64(statement_, index, bytes.data(), bytes.size(), SQLITE_STATIC));
  }
  void BindInteger(int index, std::int64_t number) {
    Check(::sqlite3_bind_int64(statement_, index, number));
  }

  // Binds the range of texts that begin with `prefix` to 1 and 2. `end` must outlive the run.
  void BindRange(const std::string& prefix, const std::optional<std::string>& end) {
    BindText(1, prefix);
    if (end) {
      BindText(2, *end);
    } else {
      // Every blob sorts behind every text.
      Check(::sqlite3_bind_zeroblob(statement_, 2, 0));
    }
  }

  // True when there is a row, false at the end.
  bool Step() {
    const int code = ::sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) Throw(code);
    return false;
  }

  std::int64_t Integer(int column) const { return ::sqlite3_column_int64(statement_, column); }
  std::string_view Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(::sqlite3_column_text(statement_, column));
    return {text, static_cast<std::size_t>(::sqlite3_column_bytes(statement_, column))};
  }
  std::span<const std::uint8_t> Blob(int column) const {
    const auto* bytes = static_cast<const std::uint8_t*>(::sqlite3_column_blob(statement_, column));
    return {bytes, static_cast<std::size_t>(::sqlite3_column_bytes(statement_, column))};
  }

 private:
  [[noreturn]] void Throw(int code) {
    throw SqliteUserDefaultsError::Of(::sqlite3_db_handle(statement_), code);
  }
  void Check(int code) {
    if (code != SQLITE_OK) Throw(code);
  }

  sqlite3_stmt* statement_;
};

SqliteUserDefaultsDatabase::SqliteUserDefaultsDatabase(const std::string& path,
                                                       std::chrono::milliseconds patience,
                                                       std::function<void()> beforeCommit)
    : beforeCommit_(std::move(beforeCommit)), patience_(patience) {
  Connect(path);
  Harden();
  CheckOrMakeContents();
  PrepareStatements();
  ::sqlite3_commit_hook(connection_.get(), &CallBeforeCommit, this);
}

SqliteUserDefaultsDatabase::~SqliteUserDefaultsDatabase() = default;

int SqliteUserDefaultsDatabase::WaitForLock(void* database, int tries) {
  auto& self = *static_cast<SqliteUserDefaultsDatabase*>(database);
  if (!self.isPatient_) return 0;
  if (tries == 0) self.patience_.Begin();
  return self.patience_.WaitOneStep() ? 1 : 0;
}

int SqliteUserDefaultsDatabase::CallBeforeCommit(void* database) {
  static_cast<SqliteUserDefaultsDatabase*>(database)->beforeCommit_();
  return 0;
}

void SqliteUserDefaultsDatabase::Connect(const std::string& path) {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX |
                         SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_EXRESCODE;
  sqlite3* connection = nullptr;
  const int code = ::sqlite3_open_v2(path.c_str(), &connection, kFlags, nullptr);
  connection_.reset(connection);
  Check(code);
  Check(::sqlite3_busy_handler(connection, &WaitForLock, this));
}

// Nothing in the file may make SQLite run code, or take memory without bounds.
void SqliteUserDefaultsDatabase::Harden() {
  sqlite3* connection = connection_.get();
  Check(::sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr));
  Check(::sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr));
  ::sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, kMaximumRow);
  ::sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
}

void SqliteUserDefaultsDatabase::CheckOrMakeContents() {
  // Looks before it writes: what is not ours stays untouched.
  const bool isNew = !HoldsUserDefaults();
  // There is nothing to lose yet in a new file, and to wait for the disk would take long.
  Execute(isNew ? "PRAGMA synchronous = OFF" : "PRAGMA synchronous = NORMAL");
  const Statement statement = Prepare("PRAGMA journal_mode = WAL");
  if (Execution setting(statement); !setting.Step() || setting.Text(0) != "wal") {
    throw SqliteUserDefaultsError(Kind::Failed, "no write-ahead log can be kept beside it");
  }
  // Keeps a log that once grew long from staying so; the usual length lies well below.
  Execute("PRAGMA journal_size_limit = 8388608");
  if (isNew) {
    MakeContents();
    Execute("PRAGMA synchronous = NORMAL");
  }
}

// False for an empty database; throws for all but that and our own.
bool SqliteUserDefaultsDatabase::HoldsUserDefaults() {
  const std::int64_t tables = QueryInteger("SELECT count(*) FROM sqlite_schema");
  const std::int64_t applicationId = QueryInteger("PRAGMA application_id");
  if (tables == 0 && applicationId == 0) return false;
  if (applicationId != kApplicationId) {
    throw SqliteUserDefaultsError(Kind::Foreign, "it is a database of another kind");
  }
  if (QueryInteger("PRAGMA user_version") > kVersion) {
    throw SqliteUserDefaultsError(Kind::Failed, "a later version of this library made it");
  }
  const Statement statement = Prepare("SELECT sql FROM sqlite_schema");
  Execution reading(statement);
  if (tables != 1 || !reading.Step() || reading.Text(0) != kSchema) {
    throw SqliteUserDefaultsError(Kind::Foreign, "its tables are of another kind");
  }
  return true;
}

void SqliteUserDefaultsDatabase::MakeContents() {
  // Whoever opens a file holds its lock, so nobody else can be about to do the same; and a
  // connection that fails here closes, which ends the transaction.
  Execute("BEGIN IMMEDIATE");
  Execute(kSchema);
  Execute("PRAGMA application_id = " + std::to_string(kApplicationId));
  Execute("PRAGMA user_version = " + std::to_string(kVersion));
  Execute("COMMIT");
}

void SqliteUserDefaultsDatabase::PrepareStatements() {
  find_ = Prepare("SELECT type, value FROM defaults WHERE key = ?1");
  keys_ = Prepare("SELECT key FROM defaults WHERE key >= ?1 AND key < ?2 ORDER BY key");
  put_ = Prepare("INSERT OR REPLACE INTO defaults (key, type, value) VALUES (?1, ?2, ?3)");
  remove_ = Prepare("DELETE FROM defaults WHERE key = ?1");
  removeRange_ = Prepare("DELETE FROM defaults WHERE key >= ?1 AND key < ?2");
}

bool SqliteUserDefaultsDatabase::HasMoved() const {
  int moved = 0;
  const int code =
      ::sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return code == SQLITE_OK && moved != 0;
}

Value SqliteUserDefaultsDatabase::Find(std::string_view key, std::size_t& size) {
  size = 0;
  Execution reading(find_);
  reading.BindText(1, key);
  if (!reading.Step()) return {};
  const std::span<const std::uint8_t> bytes = reading.Blob(1);
  std::optional<Value> value = DecodeUserDefaultsValue(reading.Integer(0), bytes);
  if (!value) {
    throw SqliteUserDefaultsError(Kind::Failed, "an entry is not in a known form");
  }
  size = bytes.size();
  return *std::move(value);
}

std::vector<std::string> SqliteUserDefaultsDatabase::KeysWithPrefix(const std::string& prefix) {
  const std::optional<std::string> end = EndOfPrefix(prefix);
  std::vector<std::string> keys;
  Execution reading(keys_);
  reading.BindRange(prefix, end);
  while (reading.Step()) keys.emplace_back(reading.Text(0));
  return keys;
}

void SqliteUserDefaultsDatabase::Put(std::string_view key, const SqliteUserDefaultsBlob& blob) {
  Execution writing(put_);
  writing.BindText(1, key);
  writing.BindInteger(2, blob.type);
  writing.BindBlob(3, blob.bytes);
  writing.Step();
}

void SqliteUserDefaultsDatabase::Remove(std::string_view key) {
  Execution writing(remove_);
  writing.BindText(1, key);
  writing.Step();
}

void SqliteUserDefaultsDatabase::RemoveWithPrefix(const std::string& prefix) {
  const std::optional<std::string> end = EndOfPrefix(prefix);
  Execution writing(removeRange_);
  writing.BindRange(prefix, end);
  writing.Step();
}

bool SqliteUserDefaultsDatabase::TryWithoutWriters(const std::function<void()>& task) {
  sqlite3* connection = connection_.get();
  isPatient_ = false;
  const int code = ::sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  isPatient_ = true;
  if (code != SQLITE_OK) return false;
  task();
  ::sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
  return true;
}

SqliteUserDefaultsDatabase::Statement SqliteUserDefaultsDatabase::Prepare(std::string_view sql) {
  sqlite3_stmt* statement = nullptr;
  Check(::sqlite3_prepare_v3(connection_.get(), sql.data(), static_cast<int>(sql.size()),
                             SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
  return Statement(statement);
}

void SqliteUserDefaultsDatabase::Execute(std::string_view sql) {
  const Statement statement = Prepare(sql);
  Execution(statement).Step();
}

std::int64_t SqliteUserDefaultsDatabase::QueryInteger(std::string_view sql) {
  const Statement statement = Prepare(sql);
  Execution reading(statement);
  return reading.Step() ? reading.Integer(0) : 0;
}

void SqliteUserDefaultsDatabase::Check(int code) {
  if (code != SQLITE_OK) throw SqliteUserDefaultsError::Of(connection_.get(), code);
}

}  // namespace Platform
