// Our databases beside the same statements on raw SQLite: prepared, bound, stepped and finalised by
// hand each time, with rows read into the very same texts. All but the last pair use private
// temporary databases, so that the disk does not hide the difference.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include "TemporaryFolder.h"
#include "VelmoraCore/Query.h"
#include "VelmoraCore/Variant.h"
#include "services/database/Database.h"

namespace {

using Velmora::Database;
using Velmora::Query;
using Velmora::Variant;
using Type = Velmora::DatabaseInterface::ColumnDataType;
using Constraint = Velmora::DatabaseInterface::ColumnConstraint;

constexpr int kRows = 10'000;
constexpr int kChanges = 5'000;
constexpr int kChangesInFile = 2'000;
const std::string kUrl = "https://example.com/hits?id=0123456789&name=trackAction&value=12.5";

void Check(bool succeeded) {
  if (!succeeded) throw std::runtime_error("a statement failed");
}

class Ours {
 public:
  explicit Ours(const std::string& directory = "") : database_("hits.db", directory) {
    database_.CreateTable("hits", {"id", "price", "time", "url"},
                          {Type::Integer, Type::Real, Type::Integer, Type::Text},
                          {{Constraint::PrimaryKey}, {}, {}, {}});
  }

  using Row = Velmora::VariantMap;

  static Row MakeRow(int id) {
    return {{"id", Variant::FromInteger(id)},
            {"price", Variant::FromDouble(12.5)},
            {"time", Variant::FromLong(1'700'000'000)},
            {"url", Variant::FromString(kUrl)}};
  }
  void Insert(const Row& row) { Check(database_.Insert("hits", row)); }
  void Select() {
    const auto result = database_.RunQuery(std::make_shared<Query>("hits"));
    Check(result->GetCount() == kRows);
    benchmark::DoNotOptimize(result);
  }
  void Update(int id) {
    Check(
        database_.Update("hits", {{"time", Variant::FromLong(id)}}, "id=?", {std::to_string(id)}));
  }
  void Delete(int id) { Check(database_.Delete("hits", "id=?", {std::to_string(id)})); }

 private:
  Database database_;
};

class Raw {
 public:
  explicit Raw(const std::string& directory = "") {
    const std::string path = directory.empty() ? "" : directory + "/raw.db";
    Check(::sqlite3_open(path.empty() ? nullptr : path.c_str(), &connection_) == SQLITE_OK);
    Run("CREATE TABLE hits (id INTEGER PRIMARY KEY, price REAL, time INTEGER, url TEXT)");
  }
  ~Raw() { ::sqlite3_close(connection_); }
  Raw(const Raw&) = delete;
  Raw& operator=(const Raw&) = delete;

  struct Row {
    int id;
    double price;
    std::int64_t time;
    std::string url;
  };

  static Row MakeRow(int id) { return {id, 12.5, 1'700'000'000, kUrl}; }
  void Insert(const Row& row) {
    Check(Rows("SELECT name FROM sqlite_master WHERE type='table' AND name='hits'").size() == 1);
    sqlite3_stmt* statement =
        Prepare("INSERT INTO hits (id, price, time, url) VALUES (?, ?, ?, ?);");
    ::sqlite3_bind_int(statement, 1, row.id);
    ::sqlite3_bind_double(statement, 2, row.price);
    ::sqlite3_bind_int64(statement, 3, row.time);
    ::sqlite3_bind_text(statement, 4, row.url.data(), static_cast<int>(row.url.size()),
                        SQLITE_TRANSIENT);
    Finish(statement);
  }
  void Select() {
    const auto rows = Rows("SELECT * FROM hits");
    Check(rows.size() == kRows);
    benchmark::DoNotOptimize(rows.data());
  }
  void Update(int id) {
    sqlite3_stmt* statement = Prepare("UPDATE hits SET time=? WHERE id=" + std::to_string(id));
    ::sqlite3_bind_int64(statement, 1, id);
    Finish(statement);
  }
  void Delete(int id) { Run("DELETE FROM hits WHERE id=" + std::to_string(id)); }

 private:
  sqlite3_stmt* Prepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    Check(::sqlite3_prepare_v2(connection_, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK);
    return statement;
  }
  static void Finish(sqlite3_stmt* statement) {
    Check(::sqlite3_step(statement) == SQLITE_DONE);
    ::sqlite3_finalize(statement);
  }
  void Run(const std::string& sql) { Finish(Prepare(sql)); }

  std::vector<std::vector<std::string>> Rows(const std::string& sql) {
    std::vector<std::vector<std::string>> rows;
    sqlite3_stmt* statement = Prepare(sql);
    while (::sqlite3_step(statement) == SQLITE_ROW) {
      std::vector<std::string>& row = rows.emplace_back();
      const int count = ::sqlite3_column_count(statement);
      row.reserve(static_cast<std::size_t>(count));
      for (int column = 0; column < count; ++column) row.push_back(Cell(statement, column));
    }
    ::sqlite3_finalize(statement);
    return rows;
  }
  static std::string Cell(sqlite3_stmt* statement, int column) {
    switch (::sqlite3_column_type(statement, column)) {
      case SQLITE_INTEGER:
        return std::to_string(::sqlite3_column_int(statement, column));
      case SQLITE_FLOAT:
        return std::to_string(::sqlite3_column_double(statement, column));
      case SQLITE_TEXT:
        return reinterpret_cast<const char*>(::sqlite3_column_text(statement, column));
      default:
        return {};
    }
  }

  sqlite3* connection_ = nullptr;
};

template <class Side>
void Fill(Side& side, int rows) {
  for (int id = 0; id < rows; ++id) side.Insert(Side::MakeRow(id));
}

// Whoever inserts has the rows, so they are made before the clock starts.
template <class Side>
void InsertAll(benchmark::State& state, Side& side) {
  std::vector<typename Side::Row> rows;
  rows.reserve(static_cast<std::size_t>(state.max_iterations));
  for (benchmark::IterationCount id = 0; id < state.max_iterations; ++id) {
    rows.push_back(Side::MakeRow(static_cast<int>(id)));
  }
  auto row = rows.begin();
  for (auto _ : state) side.Insert(*row++);
}

template <class Side>
void MeasureInsert(benchmark::State& state) {
  Side side;
  InsertAll(state, side);
}

template <class Side>
void MeasureQuery(benchmark::State& state) {
  Side side;
  Fill(side, kRows);
  for (auto _ : state) side.Select();
}

template <class Side>
void MeasureUpdate(benchmark::State& state) {
  Side side;
  Fill(side, kChanges);
  int id = 0;
  for (auto _ : state) side.Update(id++ % kChanges);
}

// As many deletions as there are rows.
template <class Side>
void MeasureDelete(benchmark::State& state) {
  Side side;
  Fill(side, kChanges);
  int id = 0;
  for (auto _ : state) side.Delete(id++);
}

template <class Side>
void MeasureInsertInFile(benchmark::State& state) {
  const TemporaryFolder directory;
  Side side(directory.Path());
  InsertAll(state, side);
}

BENCHMARK(MeasureInsert<Ours>)->Name("DatabaseInsert")->Iterations(kChanges);
BENCHMARK(MeasureInsert<Raw>)->Name("DatabaseInsertRaw")->Iterations(kChanges);
BENCHMARK(MeasureQuery<Ours>)->Name("DatabaseQuery");
BENCHMARK(MeasureQuery<Raw>)->Name("DatabaseQueryRaw");
BENCHMARK(MeasureUpdate<Ours>)->Name("DatabaseUpdate")->Iterations(kChanges);
BENCHMARK(MeasureUpdate<Raw>)->Name("DatabaseUpdateRaw")->Iterations(kChanges);
BENCHMARK(MeasureDelete<Ours>)->Name("DatabaseDelete")->Iterations(kChanges);
BENCHMARK(MeasureDelete<Raw>)->Name("DatabaseDeleteRaw")->Iterations(kChanges);
BENCHMARK(MeasureInsertInFile<Ours>)
    ->Name("DatabaseInsertInFile")
    ->Iterations(kChangesInFile)
    ->UseRealTime();
BENCHMARK(MeasureInsertInFile<Raw>)
    ->Name("DatabaseInsertInFileRaw")
    ->Iterations(kChangesInFile)
    ->UseRealTime();

}  // namespace
