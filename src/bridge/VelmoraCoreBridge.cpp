#include "bridge/VelmoraCoreBridge.h"

#include <cstdint>
#include <memory>
#include <vector>

#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/TryCatch.h"
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

// When the process ends, what the core's threads use is destroyed piece by piece. They must be gone
// by then, which takes no longer than disposing the core does.
class VelmoraCoreBridge::ExitHandler {
 public:
  ExitHandler()
      : processInfo_(Platform::Host::Current()->processInfo),
        process_(processInfo_->ProcessIdentifier()) {}

  ~ExitHandler() {
    // A forked child has none of the threads, and would wait for them for ever.
    if (instance_ == nullptr || processInfo_->ProcessIdentifier() != process_) return;
    TrySwallow([] { instance_->core_->Dispose(); });
  }

  ExitHandler(const ExitHandler&) = delete;
  ExitHandler& operator=(const ExitHandler&) = delete;

 private:
  const std::shared_ptr<Platform::ProcessInfo> processInfo_;
  const std::int64_t process_;
};

constinit VelmoraCoreBridge* VelmoraCoreBridge::instance_ = nullptr;

VelmoraCoreBridge::VelmoraCoreBridge() : Object("VelmoraCoreBridge") {
  platformServices_ = CreateNativePlatformServices();
  core_ = Core::Create(platformServices_, nullptr);
}

VelmoraCoreBridge::~VelmoraCoreBridge() = default;

VelmoraCoreBridge* VelmoraCoreBridge::GetInstance() {
  if (instance_ == nullptr) {
    instance_ = new VelmoraCoreBridge();
    // After everything that making the core put in place, so that it goes before.
    static const ExitHandler exitHandler;
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
