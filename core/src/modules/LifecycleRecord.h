#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "VelmoraCore/DataStoreInterface.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// What is remembered of an app's sessions, from one start of the app to the next. Times are seconds
// since 1970, 0 where they are not known. A value of one thread's.
//
// A session lasts from a start to a pause, and goes on when the next start comes within the session
// timeout; a start that begins one is a launch.
class LifecycleRecord {
 public:
  // With the keys of the store in which an earlier generation's values are found too.
  static LifecycleRecord Load(const DataStoreInterface& store);
  void Save(DataStoreInterface& store) const;

  // True when a start now would go on with the last session.
  bool IsWithinSession(std::int64_t now, std::chrono::seconds timeout,
                       const std::string& version) const;

  // The app starts. Returns what a launch has to tell, as texts: that it is one, an install, an
  // upgrade or the first after a crash, and how the last session ended.
  VariantMap Launch(std::int64_t now, const std::string& version);
  void Resume(std::int64_t now);

  void Pause(std::int64_t now);

  // What holds for the whole session, as texts.
  VariantMap Facts(std::int64_t now) const;

 private:
  bool IsFirstUse() const;

  std::int64_t installDate_ = 0;
  std::int64_t lastDateUsed_ = 0;
  std::int64_t startDate_ = 0;
  std::int64_t pauseDate_ = 0;  // 0 while the session goes on
  std::int32_t launches_ = 0;
  std::string lastVersion_;
  bool hasClosedWell_ = false;
};

}  // namespace Velmora
