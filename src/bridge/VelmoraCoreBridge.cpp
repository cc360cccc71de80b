#include "bridge/VelmoraCoreBridge.h"

#include <vector>

#include "QEXCore_iOS/GetCore.h"
#include "bridge/PlatformServices.h"
#include "migration/QEXV4Migration.h"

namespace Velmora {

namespace {

// Bridges that were given up. They are never deleted, since somebody may still use what they own,
// and stay reachable, so that nobody takes them for leaks.
std::vector<VelmoraCoreBridge*>& AbandonedBridges() {
  static auto& bridges = *new std::vector<VelmoraCoreBridge*>;
  return bridges;
}

}  // namespace

constinit VelmoraCoreBridge* VelmoraCoreBridge::instance_ = nullptr;

VelmoraCoreBridge::VelmoraCoreBridge() : Object("VelmoraCoreBridge") {
  platformServices_ = CreateNativePlatformServices();
  core_ = Core::Create(platformServices_, nullptr);
}

VelmoraCoreBridge::~VelmoraCoreBridge() = default;

VelmoraCoreBridge* VelmoraCoreBridge::GetInstance() {
  if (instance_ == nullptr) {
    instance_ = new VelmoraCoreBridge();
    // Only now: the migration may come back here, and must then find this bridge.
    QEXV4Migration::migrate();
  }
  return instance_;
}

void VelmoraCoreBridge::ResetInstance() {
  if (instance_ == nullptr) return;
  instance_->core_->Dispose();
  AbandonedBridges().push_back(instance_);
  instance_ = nullptr;
}

std::shared_ptr<Core> VelmoraCoreBridge::GetCore() { return core_; }

std::shared_ptr<PlatformServicesInterface> VelmoraCoreBridge::GetPlatformServices() {
  return platformServices_;
}

}  // namespace Velmora

std::shared_ptr<Velmora::Core> GetCore() {
  return Velmora::VelmoraCoreBridge::GetInstance()->GetCore();
}
