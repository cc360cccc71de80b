#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/LocalNotifications.h"
#include "QEXCore_iOS/Platform/Uuid.h"

namespace Platform {

class DesktopNotifier;

// Notifications of the legacy kind, shown by the same service as the modern ones; a system that has
// these does not need them, so they have to be switched on.
class DesktopLocalNotifications final : public LocalNotifications {
 public:
  enum class Availability { Off, On };

  DesktopLocalNotifications(std::shared_ptr<DesktopNotifier> notifier,
                            std::shared_ptr<UuidGenerator> uuids, Availability availability);

  // True when they are on and there is a session bus.
  bool IsSupported() const override;
  bool KnowsCategory() const override { return true; }
  void Schedule(const LocalNotification& notification) override;

 private:
  const std::shared_ptr<DesktopNotifier> notifier_;
  const std::shared_ptr<UuidGenerator> uuids_;
  const Availability availability_;
};

}  // namespace Platform
