#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/PlatformServicesInterface.h"
#include "modules/RuleSet.h"

namespace Velmora {

// What is remembered of the rules across starts: which folder's rules serve, and how often the
// rules that have a limit have fired. Belongs to the hub's thread. Without a data store nothing is
// remembered.
class RulesStore {
 public:
  struct Current {
    std::string folder;
    std::string sha256;
  };

  explicit RulesStore(const PlatformServicesInterface& services);

  // Nothing when no rules have been installed.
  std::optional<Current> GetCurrent() const;

  // From now on these serve; both values change at once. False, with a log line, when that cannot
  // be remembered.
  bool SetCurrent(const Current& current);

  std::int64_t TimesFired(const std::string& rule) const;

  // Remembered before it returns.
  void CountFiring(const std::string& rule);

  // Forgets the rules that there are no more.
  void KeepCountsOf(const RuleSet& rules);

 private:
  void SaveCounts() const;

  std::shared_ptr<DataStoreInterface> store_;
  StringMap counts_;
};

}  // namespace Velmora
