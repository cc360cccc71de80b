#include "services/system/SystemInfoCaches.h"

#include <utility>

namespace Velmora {
namespace {

struct Shared {
  std::mutex mutex;
  std::shared_ptr<SystemInfoCaches> caches = std::make_shared<SystemInfoCaches>();
};

// Never destroyed: threads of the core may ask until the process ends.
Shared& TheShared() {
  static auto* shared = new Shared;
  return *shared;
}

}  // namespace

std::shared_ptr<SystemInfoCaches> SystemInfoCaches::OfProcess() {
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  return shared.caches;
}

void SystemInfoCaches::Renew() {
  auto fresh = std::make_shared<SystemInfoCaches>();
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  shared.caches = std::move(fresh);
}

}  // namespace Velmora
