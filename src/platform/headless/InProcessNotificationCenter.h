#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "QEXCore_iOS/Platform/NotificationCenter.h"

namespace Platform {

// Notices within this process. No lock is held while an observer is called, so observers may post,
// add and take away observers.
class InProcessNotificationCenter final : public NotificationCenter {
 public:
  InProcessNotificationCenter();
  ~InProcessNotificationCenter() override;

  std::unique_ptr<NotificationObservation> AddObserver(const std::string& name,
                                                       Observer observer) override;
  void Post(const Notification& notification) override;

 private:
  class Observation;
  struct Observers;

  const std::shared_ptr<Observers> observers_;  // observations may outlive this
};

}  // namespace Platform
