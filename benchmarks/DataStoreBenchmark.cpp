// A data store beside the raw stores that are nearest to it: reading beside LMDB, writing beside a
// WAL database of SQLite. Every side has the same keys and values in a file of its own.

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <lmdb.h>
#include <sqlite3.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "TemporaryFolder.h"
#include "platform/linux/SqliteUserDefaultsProvider.h"
#include "services/datastore/NativeLocalStorageService.h"

namespace {

const std::string kStore = "Lifecycle";
const std::string kValue = "8b1f0c52-6a53-4d0e-9a53-1c7f0e2b9d11";

void Check(bool succeeded) {
  if (!succeeded) throw std::runtime_error("a store failed");
}

std::vector<std::string> Keys(std::int64_t count) {
  std::vector<std::string> keys;
  for (std::int64_t number = 0; number < count; ++number) {
    keys.push_back("setting." + std::to_string(number));
  }
  return keys;
}

// As a data store spells a key in the file.
std::string StoredKey(const std::string& key) { return "Korvo." + kStore + "." + key; }

class Ours {
 public:
  Ours() {
    const auto former = Platform::Host::Current();
    Platform::Host host = *former;
    host.userDefaults = std::make_shared<Platform::SqliteUserDefaultsProvider>(
        Platform::SqliteUserDefaultsProvider::Folders{folder_.PathOf("application"),
                                                      folder_.PathOf("shared")},
        host.systemLog);
    Platform::Host::Install(host);
    store_ = Velmora::CreateNativeLocalStorageService()->GetDataStore(kStore);
    Platform::Host::Install(*former);
  }

  std::string Get(const std::string& key) const { return store_->GetString(key, ""); }
  void Set(const std::string& key) const { store_->SetString(key, kValue); }

 private:
  const TemporaryFolder folder_;
  std::shared_ptr<Velmora::DataStoreInterface> store_;
};

class Lmdb {
 public:
  Lmdb() {
    Check(::mdb_env_create(&environment_) == 0);
    Check(::mdb_env_set_mapsize(environment_, std::size_t{64} << 20) == 0);
    Check(::mdb_env_open(environment_, folder_.Path().c_str(), MDB_NOSYNC, 0600) == 0);
    MDB_txn* transaction = Begin(0);
    Check(::mdb_dbi_open(transaction, nullptr, 0, &database_) == 0);
    Check(::mdb_txn_commit(transaction) == 0);
  }
  ~Lmdb() {
    ::mdb_txn_abort(reader_);
    ::mdb_env_close(environment_);
  }
  Lmdb(const Lmdb&) = delete;
  Lmdb& operator=(const Lmdb&) = delete;

  void Set(const std::string& key) {
    MDB_txn* transaction = Begin(0);
    const std::string stored = StoredKey(key);
    MDB_val keyBytes = BytesOf(stored);
    MDB_val valueBytes = BytesOf(kValue);
    Check(::mdb_put(transaction, database_, &keyBytes, &valueBytes, 0) == 0);
    Check(::mdb_txn_commit(transaction) == 0);
  }

  std::string Get(const std::string& key) {
    if (reader_ == nullptr) {
      reader_ = Begin(MDB_RDONLY);
    } else {
      Check(::mdb_txn_renew(reader_) == 0);
    }
    const std::string stored = StoredKey(key);
    MDB_val keyBytes = BytesOf(stored);
    MDB_val valueBytes{};
    Check(::mdb_get(reader_, database_, &keyBytes, &valueBytes) == 0);
    std::string value(static_cast<const char*>(valueBytes.mv_data), valueBytes.mv_size);
    ::mdb_txn_reset(reader_);
    return value;
  }

 private:
  static MDB_val BytesOf(const std::string& text) {
    return {text.size(), const_cast<char*>(text.data())};
  }

  MDB_txn* Begin(unsigned flags) {
    MDB_txn* transaction = nullptr;
    Check(::mdb_txn_begin(environment_, nullptr, flags, &transaction) == 0);
    return transaction;
  }

  const TemporaryFolder folder_;
  MDB_env* environment_ = nullptr;
  MDB_txn* reader_ = nullptr;
  MDB_dbi database_ = 0;
};

class Sqlite {
 public:
  Sqlite() {
    Check(::sqlite3_open(folder_.PathOf("raw.db").c_str(), &connection_) == SQLITE_OK);
    Execute("PRAGMA journal_mode = WAL");
    Execute("PRAGMA synchronous = NORMAL");
    Execute("CREATE TABLE defaults (key TEXT PRIMARY KEY, type INTEGER, value) WITHOUT ROWID");
    Check(::sqlite3_prepare_v2(connection_, "INSERT OR REPLACE INTO defaults VALUES (?1, 1, ?2)",
                               -1, &put_, nullptr) == SQLITE_OK);
  }
  ~Sqlite() {
    ::sqlite3_finalize(put_);
    ::sqlite3_close(connection_);
  }
  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;

  void Set(const std::string& key) {
    const std::string stored = StoredKey(key);
    Check(::sqlite3_bind_text(put_, 1, stored.data(), static_cast<int>(stored.size()),
                              SQLITE_STATIC) == SQLITE_OK);
    Check(::sqlite3_bind_text(put_, 2, kValue.data(), static_cast<int>(kValue.size()),
                              SQLITE_STATIC) == SQLITE_OK);
    Check(::sqlite3_step(put_) == SQLITE_DONE);
    Check(::sqlite3_reset(put_) == SQLITE_OK);
  }

 private:
  void Execute(const char* sql) {
    Check(::sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr) == SQLITE_OK);
  }

  const TemporaryFolder folder_;
  sqlite3* connection_ = nullptr;
  sqlite3_stmt* put_ = nullptr;
};

template <class Side>
void MeasureGet(benchmark::State& state) {
  const std::vector<std::string> keys = Keys(state.range(0));
  Side side;
  for (const std::string& key : keys) side.Set(key);
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(side.Get(keys[next]));
    next = (next + 7) % keys.size();
  }
}

template <class Side>
void MeasureSet(benchmark::State& state) {
  const std::vector<std::string> keys = Keys(state.range(0));
  Side side;
  for (const std::string& key : keys) side.Set(key);
  std::size_t next = 0;
  for (auto _ : state) {
    side.Set(keys[next]);
    next = (next + 7) % keys.size();
  }
}

BENCHMARK(MeasureGet<Ours>)->Name("DataStoreGet")->Arg(100)->Arg(10'000);
BENCHMARK(MeasureGet<Lmdb>)->Name("DataStoreGetLmdb")->Arg(100)->Arg(10'000);
BENCHMARK(MeasureSet<Ours>)->Name("DataStoreSet")->Arg(100)->Arg(10'000);
BENCHMARK(MeasureSet<Sqlite>)->Name("DataStoreSetSqlite")->Arg(100)->Arg(10'000);

}  // namespace
