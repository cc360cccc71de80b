#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelmoraCore/DatabaseInterface.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {

// Hits in a database, in order. A row holds those that were written at once, and how many of them
// are done with. Belongs to one thread at a time. Every operation throws an SdkError when the
// database fails; what it was to change is then as it was.
class HitTable {
 public:
  struct Row {
    std::int64_t number = 0;
    std::int64_t time = 0;  // at which they were queued: milliseconds since 1970
    std::size_t done = 0;   // so many of the first
    std::vector<std::string> hits;
  };

  // Makes the table where it is missing.
  explicit HitTable(std::shared_ptr<DatabaseInterface> database);

  // The database holds them when this returns. A hit is a JSON text.
  void Append(std::int64_t time, const std::vector<std::string>& hits);

  // The oldest row; nothing when there is none. One that was tampered with has no hits.
  std::optional<Row> First() const;

  void SetDone(std::int64_t number, std::size_t done);
  void Remove(std::int64_t number);
  void RemoveAll();

  // How many hits are not done with.
  std::size_t Count() const;

  // True when the error says that the file itself is damaged, so that waiting will not help.
  static bool IsDamage(const SdkError& error);

 private:
  std::shared_ptr<DatabaseInterface> database_;
};

}  // namespace Velmora
