#include "modules/HitQueue.h"

#include <algorithm>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Analytics";
constexpr const char* kSourceLocation = "src/modules/HitQueue";
constexpr const char* kDatabase = "KorvoMobile_AnalyticsHits";

// Of hits that wait in memory; rows of the table count from 1.
constexpr std::int64_t kInMemory = 0;

// One row, and so one write to the disk, for so many hits or bytes.
constexpr std::size_t kMaxHitsInRow = 100;
constexpr std::size_t kMaxBytesInRow = std::size_t{256} * 1024;

constexpr std::size_t kMaxBytesInMemory = std::size_t{8} * 1024 * 1024;

}  // namespace

template <class Work>
bool HitQueue::TryTable(const Work& work) {
  // The second attempt is made on a new database in the place of a damaged one.
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (OpenTable() && Attempt([&] { work(*table_); })) return true;
    if (failedAt_.has_value()) return false;
  }
  return false;
}

HitQueue::HitQueue(const PlatformServicesInterface& services, const Clock& clock)
    : services_(services), clock_(clock) {}

void HitQueue::SetLimits(Limits limits) {
  limits_ = limits;
  DropBeyondLimits();
}

void HitQueue::Append(const std::vector<std::string>& hits) {
  for (const std::string& hit : hits) unsaved_.push_back({++lastIndex_, Now(), hit});
  Save();
  DropBeyondLimits();
}

void HitQueue::Save() {
  while (!unsaved_.empty() && TryTable([this](HitTable& table) { SaveOneRow(table); })) {
  }
}

void HitQueue::SaveOneRow(HitTable& table) {
  std::vector<std::string> hits;
  std::size_t bytes = 0;
  for (const Unsaved& hit : unsaved_) {
    bytes += hit.text.size();
    if (!hits.empty() && (hits.size() == kMaxHitsInRow || bytes > kMaxBytesInRow)) break;
    hits.push_back(hit.text);
  }
  table.Append(unsaved_.front().time, hits);
  countInTable_ += hits.size();
  hasMadeAnew_ = false;
  hasWarned_ = false;
  unsaved_.erase(unsaved_.begin(), unsaved_.begin() + static_cast<std::ptrdiff_t>(hits.size()));
}

std::optional<HitQueue::Hit> HitQueue::First() {
  Save();
  if (std::optional<Hit> hit = FirstOfTable()) return hit;
  while (!unsaved_.empty() && IsTooOld(unsaved_.front().time)) {
    unsaved_.pop_front();
    ++dropped_.tooOld;
  }
  if (unsaved_.empty()) return std::nullopt;
  return Hit{{kInMemory, unsaved_.front().index}, unsaved_.front().text};
}

std::optional<HitQueue::Hit> HitQueue::FirstOfTable() {
  std::optional<Hit> hit;
  const auto look = [&](HitTable& table) {
    while (const std::optional<HitTable::Row> row = table.First()) {
      const bool isTooOld = IsTooOld(row->time);
      if (!isTooOld && row->done < row->hits.size()) {
        hit = Hit{{row->number, row->done}, row->hits[row->done]};
        return;
      }
      if (isTooOld) dropped_.tooOld += row->hits.size() - std::min(row->done, row->hits.size());
      Finish(table, *row, row->hits.size());
    }
    countInTable_ = 0;
  };
  TryTable(look);
  return hit;
}

void HitQueue::Remove(const Place& place) {
  if (place.row == kInMemory) {
    std::erase_if(unsaved_, [&](const Unsaved& hit) { return hit.index == place.index; });
    return;
  }
  TryTable([&](HitTable& table) {
    const std::optional<HitTable::Row> row = table.First();
    if (row.has_value() && place == Place{row->number, row->done}) {
      Finish(table, *row, place.index + 1);
    }
  });
}

// The first `done` hits of the row are done with.
void HitQueue::Finish(HitTable& table, const HitTable::Row& row, std::size_t done) {
  if (done < row.hits.size()) {
    table.SetDone(row.number, done);
  } else {
    table.Remove(row.number);
  }
  countInTable_ -= std::min(countInTable_, done - std::min(row.done, done));
}

void HitQueue::Clear() {
  unsaved_.clear();
  mustClear_ = true;
  TryTable([](HitTable&) {});
}

std::size_t HitQueue::Count() {
  Save();
  // Also where there was nothing to save.
  TryTable([](HitTable&) {});
  return countInTable_ + unsaved_.size();
}

HitQueue::Dropped HitQueue::TakeDropped() { return std::exchange(dropped_, {}); }

void HitQueue::DropBeyondLimits() {
  // A hundredth at a time: each time costs a write to the disk.
  constexpr std::size_t kPart = 100;
  DropBeyondMemory();
  const std::size_t count = Count();
  if (count <= limits_.count) return;
  DropOldest(std::min(count - limits_.count + limits_.count / kPart, count));
}

void HitQueue::DropBeyondMemory() {
  std::size_t bytes = 0;
  for (const Unsaved& hit : unsaved_) bytes += hit.text.size();
  for (; bytes > kMaxBytesInMemory; unsaved_.pop_front()) {
    bytes -= unsaved_.front().text.size();
    ++dropped_.tooMany;
  }
}

void HitQueue::DropOldest(std::size_t count) {
  while (count > 0 && TryTable([&](HitTable& table) {
           if (!DropOldestOfTable(table, count)) countInTable_ = 0;
         }) &&
         countInTable_ > 0) {
  }
  const std::size_t ofMemory = std::min(count, unsaved_.size());
  unsaved_.erase(unsaved_.begin(), unsaved_.begin() + static_cast<std::ptrdiff_t>(ofMemory));
  dropped_.tooMany += ofMemory;
}

// Drops of the first row what `count` allows. False when there is none.
bool HitQueue::DropOldestOfTable(HitTable& table, std::size_t& count) {
  const std::optional<HitTable::Row> row = table.First();
  if (!row.has_value()) return false;
  const std::size_t waiting = row->hits.size() - std::min(row->done, row->hits.size());
  const std::size_t dropped = std::min(waiting, count);
  Finish(table, *row, row->done + dropped);
  dropped_.tooMany += dropped;
  count -= dropped;
  return true;
}

bool HitQueue::IsTooOld(std::int64_t time) const {
  return Now() - time > std::chrono::milliseconds(limits_.age).count();
}

std::int64_t HitQueue::Now() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(clock_.Now().time_since_epoch())
      .count();
}

bool HitQueue::Attempt(const std::function<void()>& work) {
  bool isDone = true;
  TryCatch(work, [&](SdkError& error) {
    isDone = false;
    OnFailure(error);
  });
  return isDone;
}

bool HitQueue::OpenTable() {
  const Clock::TimePoint now = clock_.Now();
  // A failure in the future was before somebody set the clock back.
  if (failedAt_.has_value() && now - *failedAt_ < kRetry && now >= *failedAt_) return false;
  failedAt_.reset();
  return Attempt([this] {
    if (!table_.has_value()) Open();
    if (!mustClear_) return;
    table_->RemoveAll();
    countInTable_ = 0;
    mustClear_ = false;
  });
}

void HitQueue::Open() {
  const std::shared_ptr<DatabaseServiceInterface> databases = services_.GetDatabaseService();
  if (databases == nullptr) {
    throw SdkError(ErrorCodes::kPlatformServicesMissingService, "there is no database service",
                   DebugInfo(kSourceLocation, __LINE__));
  }
  // Deletes only what was opened before, which a damaged one was.
  if (std::exchange(isDamaged_, false)) databases->DeleteDatabase(kDatabase);
  table_.emplace(databases->OpenDatabase(kDatabase));
  countInTable_ = table_->Count();
}

void HitQueue::OnFailure(const SdkError& error) {
  table_.reset();
  countInTable_ = 0;
  isDamaged_ = HitTable::IsDamage(error);
  if (isDamaged_ && !std::exchange(hasMadeAnew_, true)) {
    Log::Warning(kLogTag, "the database of hits is damaged and is made anew: %s",
                 error.GetMessage().c_str());
    return;
  }
  failedAt_ = clock_.Now();
  if (std::exchange(hasWarned_, true)) return;
  Log::Warning(kLogTag, "the database of hits cannot be used; new hits wait in memory: %s",
               error.GetMessage().c_str());
}

}  // namespace Velmora
