#pragma once

#include <cstdint>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// The rows of one query, all of them, with a cursor that starts at the first. Belongs to one caller
// at a time. `index` is a column, counted from 0.
//
// Reading throws an SdkError "database.queryresult_already_closed" after Close() and
// "database.queryresult_index_error" for a column that is not there. Cells are texts: reading one
// that does not spell a number as a number throws what std::stoi and its like throw.
class VELMORA_CORE_API QueryResultInterface : public virtual ObjectInterface {
 public:
  ~QueryResultInterface() override;

  // The number of rows.
  virtual std::int32_t GetCount() const = 0;

  virtual std::int32_t GetInt(std::uint32_t index) const = 0;
  virtual double GetDouble(std::uint32_t index) const = 0;
  virtual float GetFloat(std::uint32_t index) const = 0;
  virtual std::int64_t GetLong(std::uint32_t index) const = 0;
  virtual std::string GetString(std::uint32_t index) const = 0;

  // True for an empty text as well.
  virtual bool IsNull(std::uint32_t index) const = 0;

  // Each returns true, MoveToNext() on the last row too, where it stays: iterate by GetCount().
  // After Close() they throw as reading does.
  virtual bool MoveToFirst() = 0;
  virtual bool MoveToLast() = 0;
  virtual bool MoveToNext() = 0;

  // Lets go of the rows.
  virtual void Close() = 0;
};

}  // namespace Velmora
