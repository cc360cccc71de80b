#include "modules/HitTable.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "VelmoraCore/Query.h"
#include "VelmoraCore/StringUtils.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {
namespace {

constexpr const char* kTable = "hits";
constexpr const char* kNumber = "number";
constexpr const char* kTime = "time";
constexpr const char* kSize = "size";
constexpr const char* kDone = "done";
constexpr const char* kText = "text";

// No JSON text holds this byte: in strings it is escaped.
constexpr char kBetweenHits = '\x1E';

std::string Joined(const std::vector<std::string>& hits) {
  std::string text;
  for (const std::string& hit : hits) {
    if (!text.empty()) text += kBetweenHits;
    text += hit;
  }
  return text;
}

std::vector<std::string> Parted(const std::string& text) {
  std::vector<std::string> hits;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(kBetweenHits, begin), text.size());
    hits.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return hits;
}

// Cells come from a file that anybody may have changed.
std::int64_t NumberOf(const std::string& cell) {
  std::int64_t number = 0;
  std::from_chars(cell.data(), cell.data() + cell.size(), number);
  return number;
}

// A result cuts integers to 32 bits, texts it leaves alone.
std::string WholeNumber(const char* column) { return std::string("CAST(") + column + " AS TEXT)"; }

std::string Is(const char* column) { return std::string(column) + " = ?"; }

}  // namespace

HitTable::HitTable(std::shared_ptr<DatabaseInterface> database) : database_(std::move(database)) {
  using Type = DatabaseInterface::ColumnDataType;
  using Constraint = DatabaseInterface::ColumnConstraint;
  database_->CreateTable(kTable, {kNumber, kTime, kSize, kDone, kText},
                         {Type::Integer, Type::Integer, Type::Integer, Type::Integer, Type::Text},
                         {{Constraint::PrimaryKey, Constraint::AutoIncrement}, {}, {}, {}, {}});
}

void HitTable::Append(std::int64_t time, const std::vector<std::string>& hits) {
  database_->Insert(kTable, {{kTime, Variant::FromLong(time)},
                             {kSize, Variant::FromLong(static_cast<std::int64_t>(hits.size()))},
                             {kDone, Variant::FromLong(0)},
                             {kText, Variant::FromString(Joined(hits))}});
}

std::optional<HitTable::Row> HitTable::First() const {
  const auto query = std::make_shared<Query>(
      kTable, std::vector<std::string>{WholeNumber(kNumber), WholeNumber(kTime), WholeNumber(kDone),
                                       kText});
  query->SetOrderBy(kNumber).SetLimit("1");
  const std::shared_ptr<QueryResultInterface> result = database_->RunQuery(query);
  if (result->GetCount() == 0) return std::nullopt;
  const std::int64_t done = std::max<std::int64_t>(NumberOf(result->GetString(2)), 0);
  return Row{NumberOf(result->GetString(0)), NumberOf(result->GetString(1)),
             static_cast<std::size_t>(done), Parted(result->GetString(3))};
}

void HitTable::SetDone(std::int64_t number, std::size_t done) {
  database_->Update(kTable, {{kDone, Variant::FromLong(static_cast<std::int64_t>(done))}},
                    Is(kNumber), {StringUtils::ToString(number)});
}

void HitTable::Remove(std::int64_t number) {
  database_->Delete(kTable, Is(kNumber), {StringUtils::ToString(number)});
}

void HitTable::RemoveAll() { database_->Delete(kTable, "", {}); }

std::size_t HitTable::Count() const {
  std::vector<std::string> columns(1);
  columns[0].append("SUM(").append(kSize).append(" - ").append(kDone).append(")");
  const std::shared_ptr<QueryResultInterface> result =
      database_->RunQuery(std::make_shared<Query>(kTable, columns));
  if (result->GetCount() == 0) return 0;
  return static_cast<std::size_t>(std::max<std::int64_t>(NumberOf(result->GetString(0)), 0));
}

bool HitTable::IsDamage(const SdkError& error) {
  const std::string& message = error.GetMessage();
  // The database's own words for a file that it cannot make sense of.
  return message.find("malformed") != std::string::npos ||
         message.find("not a database") != std::string::npos;
}

}  // namespace Velmora
