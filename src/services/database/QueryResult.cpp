#include "services/database/QueryResult.h"

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "DatabaseService";

[[noreturn]] void Throw(const char* code, const char* message, int line) {
  throw SdkError(code, message, DebugInfo("src/services/database/QueryResult", line));
}

// A cell has a point in its numbers; std::stod and std::stof look for what the locale has.
std::string InLocale(std::string cell) {
  const std::size_t point = cell.find('.');
  if (point != std::string::npos) cell.replace(point, 1, std::localeconv()->decimal_point);
  return cell;
}

}  // namespace

QueryResult::QueryResult() : Object(kLogTag) {}

std::int32_t QueryResult::GetCount() const { return static_cast<std::int32_t>(RowCount()); }

std::int32_t QueryResult::GetInt(std::uint32_t index) const { return std::stoi(Cell(index)); }

double QueryResult::GetDouble(std::uint32_t index) const {
  return std::stod(InLocale(Cell(index)));
}

float QueryResult::GetFloat(std::uint32_t index) const { return std::stof(InLocale(Cell(index))); }

std::int64_t QueryResult::GetLong(std::uint32_t index) const { return std::stoll(Cell(index)); }

std::string QueryResult::GetString(std::uint32_t index) const { return Get(index); }

bool QueryResult::IsNull(std::uint32_t index) const { return Cell(index).empty(); }

bool QueryResult::MoveToFirst() {
  ThrowIfClosed();
  current_ = 0;
  return true;
}

bool QueryResult::MoveToLast() {
  ThrowIfClosed();
  current_ = std::max(current_, RowCount() - 1);
  return true;
}

bool QueryResult::MoveToNext() {
  ThrowIfClosed();
  current_ = std::min(RowCount() - 1, current_ + 1);
  return true;
}

void QueryResult::Close() {
  closed_ = true;
  current_ = 0;
  rows_ = {};
}

std::string QueryResult::Get(std::uint32_t index) const { return Cell(index); }

void QueryResult::SetArgs(std::vector<std::string> row,
                          const std::vector<std::string>& columnNames) {
  const std::size_t named = std::min(row.size(), columnNames.size());
  for (std::size_t column = 0; column < named; ++column) {
    Log::Trace(kLogTag, "QueryResult: <%s> = %s", columnNames[column].c_str(), row[column].c_str());
  }
  rows_.push_back(std::move(row));
}

const std::string& QueryResult::Cell(std::uint32_t index) const {
  ThrowIfClosed();
  if (current_ >= rows_.size() || index >= rows_[current_].size()) {
    Throw(ErrorCodes::kDatabaseQueryResultIndexError, "Index error", __LINE__);
  }
  return rows_[current_][index];
}

void QueryResult::ThrowIfClosed() const {
  if (closed_) {
    Throw(ErrorCodes::kDatabaseQueryResultAlreadyClosed, "QueryResult is already closed", __LINE__);
  }
}

}  // namespace Velmora
