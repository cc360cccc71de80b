#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/QueryResultInterface.h"

namespace Velmora {

// The rows of one query, every cell as text.
//
// The cursor's arithmetic is unsigned: in a result without rows MoveToNext and MoveToLast leave it
// on a row that is not there, where every column is missing.
class QueryResult final : public Object, public virtual QueryResultInterface {
 public:
  QueryResult();

  // Zero after Close().
  std::int32_t GetCount() const override;

  std::int32_t GetInt(std::uint32_t index) const override;
  double GetDouble(std::uint32_t index) const override;
  float GetFloat(std::uint32_t index) const override;
  std::int64_t GetLong(std::uint32_t index) const override;
  std::string GetString(std::uint32_t index) const override;
  bool IsNull(std::uint32_t index) const override;
  bool MoveToFirst() override;
  bool MoveToLast() override;
  bool MoveToNext() override;
  void Close() override;

  // The cell in the current row.
  std::string Get(std::uint32_t index) const;

  // Appends a row, and logs one trace line for each cell that has a column's name.
  void SetArgs(std::vector<std::string> row, const std::vector<std::string>& columnNames);

 private:
  const std::string& Cell(std::uint32_t index) const;
  void ThrowIfClosed() const;
  std::uint32_t RowCount() const { return static_cast<std::uint32_t>(rows_.size()); }

  bool closed_ = false;
  std::uint32_t current_ = 0;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace Velmora
