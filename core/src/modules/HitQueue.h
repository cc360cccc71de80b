#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/PlatformServicesInterface.h"
#include "base/Clock.h"
#include "modules/HitTable.h"

namespace Velmora {

// Hits that wait to be sent, in order, in a database of the device. Bounded by number and age: the
// oldest go first. Belongs to one thread at a time; throws nothing.
//
// While the database cannot be used, which one warning tells, hits wait in memory behind those that
// it holds, 8 MiB at most, and are brought into it once it can be: the next operation after a
// minute tries. What the database wrote although it said that it could not is then there twice,
// never not at all. A database that is damaged is made anew, with a warning.
class HitQueue {
 public:
  struct Limits {
    std::size_t count = 10'000;
    std::chrono::seconds age = std::chrono::hours(24 * 30);
  };

  // What was dropped since it was last asked.
  struct Dropped {
    std::size_t tooMany = 0;
    std::size_t tooOld = 0;
  };

  // Where a hit waits; no other hit ever waits there.
  struct Place {
    std::int64_t row;
    std::size_t index;
    friend bool operator==(const Place&, const Place&) = default;
  };
  struct Hit {
    Place place;
    std::string text;
  };

  HitQueue(const PlatformServicesInterface& services, const Clock& clock);

  void SetLimits(Limits limits);

  // The database holds the hits when this returns, unless it cannot be used.
  void Append(const std::vector<std::string>& hits);

  // The oldest hit that is not too old.
  std::optional<Hit> First();

  // Nothing happens when it has gone already.
  void Remove(const Place& place);

  // Deletes every hit. What cannot be deleted now is before anything else is done with the
  // database.
  void Clear();

  // Brings what waits in memory into the database, if it can be.
  void Save();

  std::size_t Count();
  Dropped TakeDropped();

  // True while the database cannot be used, and hits in it cannot be seen.
  bool IsDisturbed() const { return failedAt_.has_value(); }

  // So long after a failure the database is tried again.
  static constexpr std::chrono::minutes kRetry{1};

 private:
  struct Unsaved {
    std::size_t index;
    std::int64_t time;
    std::string text;
  };

  // Does something with the table; false when it cannot be used or fails.
  template <class Work>
  bool TryTable(const Work& work);
  bool Attempt(const std::function<void()>& work);
  bool OpenTable();
  void Open();
  void OnFailure(const SdkError& error);

  std::int64_t Now() const;
  void SaveOneRow(HitTable& table);
  void DropBeyondLimits();
  void DropBeyondMemory();
  void DropOldest(std::size_t count);
  bool DropOldestOfTable(HitTable& table, std::size_t& count);
  std::optional<Hit> FirstOfTable();
  bool IsTooOld(std::int64_t time) const;
  void Finish(HitTable& table, const HitTable::Row& row, std::size_t done);

  const PlatformServicesInterface& services_;
  const Clock& clock_;
  Limits limits_;

  std::optional<HitTable> table_;
  std::size_t countInTable_ = 0;
  bool mustClear_ = false;
  bool isDamaged_ = false;
  bool hasMadeAnew_ = false;  // and written nothing since
  bool hasWarned_ = false;    // and written nothing since
  std::optional<Clock::TimePoint> failedAt_;

  std::deque<Unsaved> unsaved_;
  std::size_t lastIndex_ = 0;
  Dropped dropped_;
};

}  // namespace Velmora
